// A port's line as a tty of this machine: a pty made here, or a serial device.
#ifndef QXHOST_POSIX_PORTS_TTY_LINE_H
#define QXHOST_POSIX_PORTS_TTY_LINE_H

#include <termios.h>
#include <windows.h>

#include <memory>
#include <string>

#include "common/ports/line.h"
#include "posix/kernel/file_descriptor.h"

namespace host {

using SharedDescriptor = std::shared_ptr<const FileDescriptor>;

/// A device is open as long as someone uses the line; a pty's other end is kept open here, so that it never hangs up.
class TtyLine final : public Line {
 public:
  /// A pty; throws std::system_error. Its other end is raw from the start.
  explicit TtyLine(std::string port);
  /// A serial device, opened with the first user.
  TtyLine(std::string port, std::string device);

  /// The pty's other end.
  const std::string& controller_path() const { return controller_path_; }

  /// For a user of the line.
  SharedDescriptor tty();

  /// Settings of a device. A pty has none of its own, and its other end's are its user's.
  DWORD Configure(const DCB& state);

 private:
  DWORD Open() override;
  void Close() override;

  const std::string device_;  // empty for a pty
  std::string controller_path_;
  FileDescriptor controller_end_;

  SharedDescriptor tty_;      // guarded by mutex_
  termios found_settings_{};  // a device's settings before; guarded by mutex_
};

}  // namespace host

#endif
