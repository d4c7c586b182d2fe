// Attributes and last-write time of one file or folder of the instrument, as whoever plays the instrument sees and sets
// them: no call of the library, neither listed nor faulted. Open files are no obstacle.
#ifndef QXHOST_COMMON_FILES_FILE_FACTS_H
#define QXHOST_COMMON_FILES_FILE_FACTS_H

#include <windows.h>

#include <optional>
#include <string_view>

#include "common/text/utf.h"

namespace host {

struct InstrumentFile {
  DWORD attributes = 0;  ///< as GetFileAttributesW gives them
  FILETIME written{};    ///< UTC
};

/// What shall change; nothing = stays.
struct FileChange {
  std::optional<bool> readonly;
  std::optional<bool> hidden;
  std::optional<bool> system;
  std::optional<bool> archive;
  std::optional<FILETIME> written;
};

/// Returns 0 or the error, as GetFileAttributesW.
DWORD ReadInstrumentFile(WideView path, InstrumentFile* file);

/// Makes all the changes. Returns 0, or the error with nothing changed: 50 when this machine cannot keep the
/// attributes.
DWORD ChangeInstrumentFile(WideView path, const FileChange& change);

}  // namespace host

#endif
