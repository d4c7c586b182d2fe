// One opening of a serial port: events, time-outs and bytes, on the tty line behind it.
#ifndef QXHOST_POSIX_PORTS_SERIAL_PORT_H
#define QXHOST_POSIX_PORTS_SERIAL_PORT_H

#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/streams/streams.h"
#include "posix/ports/line.h"

namespace host {

/// The operations are the platform's calls of the same meaning; they return FALSE with the last error set.
/// Every one may run beside every other, and a pending one ends when the handle is closed (error 995).
class SerialPort final : public Stream, private LineUser {
 public:
  /// Opens the line; null with the last error set when it is in use (5) or cannot be opened.
  static std::shared_ptr<SerialPort> Open(std::shared_ptr<Line> line);
  ~SerialPort() override;

  std::string Name() const override { return line_->port(); }
  /// Returns when all bytes have come or the total time-out has passed (TRUE with fewer bytes).
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;
  /// Returns when all bytes have gone or the total time-out has passed (TRUE with fewer bytes).
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;
  void Closed() override;

  BOOL GetState(DCB* state);
  BOOL SetState(const DCB& state);
  BOOL SetTimeouts(const COMMTIMEOUTS& timeouts);
  /// EV_RXCHAR and EV_ERR, or 0. Ends a pending WaitEvent, which reports no event.
  BOOL SetMask(DWORD mask);
  /// Reports EV_RXCHAR as long as bytes wait. Fails at once with mask 0 or while another thread waits (87), and when
  /// the line has hung up (1117).
  BOOL WaitEvent(DWORD* mask);
  BOOL ClearError(DWORD* errors, COMSTAT* status);
  BOOL Purge(DWORD flags);

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

  explicit SerialPort(std::shared_ptr<Line> line);
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

  const std::shared_ptr<Line> line_;
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
