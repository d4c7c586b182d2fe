// The folder behind common/files/file_root.h.
#ifndef QXHOST_WINDOWS_DISK_FILE_ROOT_H
#define QXHOST_WINDOWS_DISK_FILE_ROOT_H

#include <memory>

#include "common/text/utf.h"
#include "windows/kernel/system_handle.h"

namespace host {

struct RootFolder {
  SystemHandle pin;  ///< keeps the folder where it is
  WideString path;   ///< as the system spells it ("\\?\C:\Instrument"), without a separator at its end
};

/// Null when there is none.
std::shared_ptr<const RootFolder> FileRoot();

}  // namespace host

#endif
