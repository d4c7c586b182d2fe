// A driver of the instrument as a stream device: shared by all who open it, and used through its operations only.
#ifndef QXHOST_INSTRUMENT_DRIVER_STREAM_H
#define QXHOST_INSTRUMENT_DRIVER_STREAM_H

#include <memory>

#include "common/calls/errors.h"
#include "common/streams/devices.h"

namespace host::instrument {

/// Reading and writing are error 50.
class DriverStream : public Stream {
 public:
  BOOL Read(void*, DWORD, DWORD*) override { return Fail(ERROR_NOT_SUPPORTED, FALSE); }
  BOOL Write(const void*, DWORD, DWORD*) override { return Fail(ERROR_NOT_SUPPORTED, FALSE); }
};

/// Makes the driver known under its name, a literal. It is opened as an existing device with normal attributes, else
/// error 87; access and sharing may be any.
template <class Driver>
void RegisterDriver(const char* name) {
  const auto open = [](const OpenRequest& request) -> std::shared_ptr<Stream> {
    const bool plain = request.flags == 0 || request.flags == FILE_ATTRIBUTE_NORMAL;
    if (plain && request.disposition == OPEN_EXISTING) return std::make_shared<Driver>();
    return Fail(ERROR_INVALID_PARAMETER, nullptr);
  };
  RegisterDevice(name, open, name);
}

}  // namespace host::instrument

#endif
