// One opening of a serial port on a tty of this machine: events, time-outs and bytes.
#ifndef QXHOST_POSIX_PORTS_TTY_PORT_H
#define QXHOST_POSIX_PORTS_TTY_PORT_H

#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/ports/serial_port.h"
#include "posix/ports/tty_line.h"

namespace host {

class TtyPort final : public SerialPort, private LineUser {
 public:
  /// Opens the line; null with the last error set when it is in use (5) or cannot be opened.
  static std::shared_ptr<TtyPort> Open(std::shared_ptr<TtyLine> line);
  ~TtyPort() override;

  std::string Name() const override { return line_->port(); }
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;
  void Closed() override;

  BOOL GetState(DCB* state) override;
  BOOL SetState(const DCB& state) override;
  BOOL SetTimeouts(const COMMTIMEOUTS& timeouts) override;
  BOOL SetMask(DWORD mask) override;
  BOOL WaitEvent(DWORD* mask) override;
  BOOL ClearError(DWORD* errors, COMSTAT* status) override;
  BOOL Purge(DWORD flags) override;

 private:
  using Clock = std::chrono::steady_clock;

  /// Why a wait on the tty has ended.
  enum class Waited { kReady, kBroken, kWoken, kTimedOut };

  /// What may pass now. With nothing, the tty events and the time to look again at.
  struct Allowance {
    std::size_t bytes;
    short events;
    Clock::time_point look_again;
  };

  /// A total time-out in milliseconds; none when both parts are 0.
  struct Timeout {
    std::atomic<DWORD> constant{0};
    std::atomic<DWORD> multiplier{0};  // for each byte asked for
  };

  explicit TtyPort(std::shared_ptr<TtyLine> line);
  void Wake() override;

  Waited WaitForTty(const FileDescriptor& wake, short events, Clock::time_point until);
  long InputWaiting() const;
  Allowance MayRead(std::size_t wanted);
  Allowance MayWrite(std::size_t wanted);
  template <class MayMove, class MoveSome>
  BOOL Transfer(DWORD bytes, DWORD* done, const Timeout& timeout, MayMove may_move, MoveSome move_some);
  long ReadSome(char* buffer, std::size_t size);
  long WriteSome(const char* bytes, std::size_t size);
  static Clock::time_point DeadlineOf(const Timeout& timeout, DWORD bytes);

  const std::shared_ptr<TtyLine> line_;
  SharedDescriptor tty_;
  FileDescriptor wake_;         // event descriptor: WaitEvent shall look again
  FileDescriptor closed_wake_;  // event descriptor, never reset: the handle has been closed
  std::atomic<bool> closed_{false};
  std::atomic<bool> waiting_{false};            // a thread is in WaitEvent
  std::atomic<std::uint64_t> mask_changes_{0};  // how often the mask has been set << 32, and the mask

  Timeout read_timeout_;
  Timeout write_timeout_;

  std::mutex state_mutex_;
  DCB state_;  // guarded by state_mutex_
};

}  // namespace host

#endif
