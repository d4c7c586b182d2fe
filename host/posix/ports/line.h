// The tty line of this machine behind a port: a pty made here, or a serial device.
#ifndef QXHOST_POSIX_PORTS_LINE_H
#define QXHOST_POSIX_PORTS_LINE_H

#include <termios.h>
#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "posix/kernel/file_descriptor.h"
#include "posix/ports/pacer.h"

namespace host {

/// One who has opened a line.
class LineUser {
 public:
  /// Makes a pending wait for input look again: who receives has changed. Called with the line's lock held.
  virtual void Wake() = 0;

 protected:
  ~LineUser() = default;
};

using SharedDescriptor = std::shared_ptr<const FileDescriptor>;

/// All of it may be used from several threads at once. A device is open as long as someone uses the line; a pty's
/// other end is kept open here, so that it never hangs up.
class Line {
 public:
  /// A pty; throws std::system_error. Its other end is raw from the start.
  explicit Line(std::string port);
  /// A serial device, opened with the first user.
  Line(std::string port, std::string device);

  const std::string& port() const { return port_; }
  /// The pty's other end.
  const std::string& controller_path() const { return controller_path_; }

  /// Adds a user. Returns 0 and the tty to use, or an error code: 5 when the line is in use and ports are not shared.
  DWORD Join(LineUser* user, SharedDescriptor* tty);
  /// Takes the user out, if it is in. The next one receives.
  void Leave(LineUser* user);
  /// Received bytes go to the one that has been in longest.
  bool Receives(const LineUser* user) const { return receiver_.load(std::memory_order_acquire) == user; }

  /// Settings of a device. A pty has none of its own, and its other end's are its user's.
  DWORD Configure(const DCB& state);

  /// Writes follow one another whole: waits for the line; false when `closed` has been set first.
  bool BeginWriting(const std::atomic<bool>& closed);
  void EndWriting();
  /// `closed` of a user has been set: it shall not wait any longer.
  void StopWaiting();

  /// A pacer with its lock.
  struct Paced {
    std::mutex mutex;
    Pacer pacer;  // guarded by mutex
  };
  Paced in;
  Paced out;

 private:
  DWORD OpenDevice();
  void CloseDevice();

  const std::string port_;
  const std::string device_;  // empty for a pty
  std::string controller_path_;
  FileDescriptor controller_end_;

  std::mutex mutex_;
  std::vector<LineUser*> users_;  // in order of opening; guarded by mutex_
  SharedDescriptor tty_;          // guarded by mutex_
  termios found_settings_{};      // a device's settings before; guarded by mutex_
  std::atomic<LineUser*> receiver_{nullptr};

  std::mutex writing_mutex_;
  std::condition_variable written_;
  bool writing_ = false;  // guarded by writing_mutex_
};

}  // namespace host

#endif
