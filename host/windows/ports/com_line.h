// A port's line as a serial port of the system.
#ifndef QXHOST_WINDOWS_PORTS_COM_LINE_H
#define QXHOST_WINDOWS_PORTS_COM_LINE_H

#include <windows.h>

#include <memory>
#include <string>

#include "common/ports/line.h"
#include "windows/kernel/system_handle.h"

namespace host {

using SharedHandle = std::shared_ptr<const SystemHandle>;

/// The port is open as long as someone uses the line.
class ComLine final : public Line {
 public:
  /// \param device  as the system names it: "COM5"
  ComLine(std::string port, std::string device);

  /// For a user of the line. Opened for overlapped use: else the system would keep one call waiting for another.
  SharedHandle handle();

 private:
  DWORD Open() override;
  void Close() override;

  const std::string device_;
  SharedHandle handle_;  // guarded by mutex_
};

}  // namespace host

#endif
