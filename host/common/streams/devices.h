// Devices by name ("COM5:", "I2C5:"): who opens each, and the call that does.
#ifndef QXHOST_COMMON_STREAMS_DEVICES_H
#define QXHOST_COMMON_STREAMS_DEVICES_H

#include <functional>
#include <memory>
#include <string_view>

#include "common/streams/streams.h"

namespace host {

/// The arguments of CreateFileW that are a device's own business.
struct OpenRequest {
  DWORD access;
  DWORD share;
  DWORD disposition;
  DWORD flags;
};

/// Opens the device; null with the last error set when it cannot.
using DeviceOpener = std::function<std::shared_ptr<Stream>(const OpenRequest&)>;

/// Makes a device known under its whole name, colon included, in any letter case. A second opener replaces the first.
///
/// \param library  a literal: the call log shows opening and closing the device as calls "open" and "close" of this
///                 library, open to faults, and no longer as COREDLL's. What it does in between it lists itself.
void RegisterDevice(std::string_view name, DeviceOpener opener, const char* library = nullptr);
void UnregisterDevice(std::string_view name);

/// Whether the name is that of a device with a library name of its own.
bool ListsItsOwnCalls(LPCWSTR name);

/// Opens a device, or else a file (see OpenFileByPath). A name like a device's ("COM7:") is error 2 when there is none.
HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE template_file);

}  // namespace host

#endif
