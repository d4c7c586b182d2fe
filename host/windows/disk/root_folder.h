// The root's folder on this host.
#ifndef QXHOST_WINDOWS_DISK_ROOT_FOLDER_H
#define QXHOST_WINDOWS_DISK_ROOT_FOLDER_H

#include "common/disk/root_folder.h"
#include "common/text/utf.h"
#include "windows/kernel/system_handle.h"

namespace host {

struct RootFolder {
  SystemHandle pin;  ///< keeps the folder where it is
  WideString path;   ///< as the system spells it ("\\?\C:\Instrument"), without a separator at its end
};

}  // namespace host

#endif
