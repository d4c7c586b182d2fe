#include "posix/ports/tty_line.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/ioctl.h>

#include <system_error>

#include "posix/ports/serial_settings.h"

namespace host {
namespace {

int Checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

void MakeRaw(int tty) {
  termios settings;
  Checked(tcgetattr(tty, &settings), "tcgetattr");
  cfmakeraw(&settings);
  Checked(tcsetattr(tty, TCSANOW, &settings), "tcsetattr");
}

}  // namespace

TtyLine::TtyLine(std::string port) : Line(std::move(port)) {
  FileDescriptor master(Checked(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "posix_openpt"));
  Checked(grantpt(master.get()), "grantpt");
  Checked(unlockpt(master.get()), "unlockpt");
  char path[128];
  if (const int error = ptsname_r(master.get(), path, sizeof path)) {
    throw std::system_error(error, std::generic_category(), "ptsname");
  }
  controller_path_ = path;
  controller_end_ = FileDescriptor(Checked(open(path, O_RDWR | O_NOCTTY | O_CLOEXEC), path));
  MakeRaw(controller_end_.get());
  tty_ = std::make_shared<const FileDescriptor>(std::move(master));
}

TtyLine::TtyLine(std::string port, std::string device) : Line(std::move(port)), device_(std::move(device)) {}

SharedDescriptor TtyLine::tty() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return tty_;
}

// The lock on the file keeps other programs' instruments off the device even where TIOCEXCL does not (root).
DWORD TtyLine::Open() {
  if (device_.empty()) return NO_ERROR;
  FileDescriptor tty(open(device_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (tty.get() < 0 || tcgetattr(tty.get(), &found_settings_) != 0 || flock(tty.get(), LOCK_EX | LOCK_NB) != 0 ||
      ioctl(tty.get(), TIOCEXCL) != 0) {
    return ErrorFromErrno(errno);
  }
  if (const DWORD error = ApplySerialState(tty.get(), DefaultSerialState())) return error;
  tty_ = std::make_shared<const FileDescriptor>(std::move(tty));
  return NO_ERROR;
}

// A call still under way keeps the descriptor for a moment longer, but the device is free from here on.
void TtyLine::Close() {
  if (device_.empty()) return;
  tcsetattr(tty_->get(), TCSANOW, &found_settings_);
  ioctl(tty_->get(), TIOCNXCL);
  flock(tty_->get(), LOCK_UN);
  tty_ = nullptr;
}

DWORD TtyLine::Configure(const DCB& state) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return device_.empty() || tty_ == nullptr ? NO_ERROR : ApplySerialState(tty_->get(), state);
}

}  // namespace host
