// What the file commands share: paths from the wire, and the reply that tells how the platform fared.
//   R<FIL,STS=SCS>, R<FIL,STS=ER_FNE>, R<FIL,STS=SCS,HAN=3>
#ifndef QXCM_COMMANDS_SERVICES_FILE_STATUS_H
#define QXCM_COMMANDS_SERVICES_FILE_STATUS_H

#include <string_view>

#include "platform/text.h"
#include "platform/windows_api.h"

namespace qxcm {

class CommandProcessor;

/// A path from the wire as the platform takes it: wide, with "\" for every "/". Nothing else is checked or changed.
WideText ToDevicePath(std::string_view path);

/// The status text of a platform error code; every code without one of its own is "ER_FAL".
std::string_view FileStatus(DWORD code);

/// Sends `head`,STS=`status of the code``tail`.
void FileStatusReply(CommandProcessor& processor, DWORD code, std::string_view tail = {},
                     std::string_view head = "FIL");

/// Makes one platform call and gives the error code it leaves, 0 for success.
template <class Call>
DWORD ErrorOf(const Call& call) {
  SetLastError(0);
  call();
  return GetLastError();
}

}  // namespace qxcm

#endif
