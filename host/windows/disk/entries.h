// Files and folders of this machine under the root, never reached through a link.
//
// Whatever is opened is asked where it lies: only what lies where its path says is there for the instrument. A link, a
// junction, a mount point, a short name or a device of this machine does not exist for it; where one has a name,
// nothing else can be made.
#ifndef QXHOST_WINDOWS_DISK_ENTRIES_H
#define QXHOST_WINDOWS_DISK_ENTRIES_H

#include <windows.h>

#include <cstdint>

#include "common/text/utf.h"
#include "windows/kernel/system_handle.h"

namespace host {

struct FileFacts {
  DWORD attributes = 0;  ///< all that the system tells
  std::uint64_t size = 0;
  FILETIME made{};
  FILETIME accessed{};
  FILETIME written{};

  bool folder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
};

/// Facts of an open file or folder; false with the last error set when they cannot be had.
bool ReadFacts(HANDLE open, FileFacts* facts);

/// Where an open file or folder lies, as the system spells it; empty with the last error set when it cannot tell.
WideString FinalPath(HANDLE open);

/// Whether an open file or folder lies at this path, in any letter case, and is no link; if so, also its facts and
/// where it lies.
bool LiesAt(HANDLE open, WideView path, FileFacts* facts, WideString* final_path);
bool LiesAt(HANDLE open, WideView path);

/// A file or folder that is there.
struct Entry {
  SystemHandle pin;
  WideString path;     ///< on this machine, as the system spells it
  FileFacts facts;     ///< as they were when it was opened
  bool taken = false;  ///< not there, but nothing else can have its name
  bool exists() const { return pin.valid(); }
};

/// Looks for a file or folder at a path of this machine. Returns 0, with an entry that does not exist when there is
/// none, or the error. The pin is no obstacle to anybody.
DWORD FindEntry(const WideString& path, Entry* entry);

/// The same for a folder that shall stay where it is while it is pinned.
DWORD FindFolder(const WideString& path, Entry* folder);

/// The last error as the platform's calls tell it.
DWORD SystemError();

}  // namespace host

#endif
