// One opening of a serial port on the system's own serial calls: events, time-outs and bytes.
//
// Bytes, settings and time-outs are the driver's business. The host's are that a port is one's own, who receives on one
// that is shared, the pace of the line, and that closing the handle ends what waits.
#ifndef QXHOST_WINDOWS_PORTS_COM_PORT_H
#define QXHOST_WINDOWS_PORTS_COM_PORT_H

#include <windows.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "common/ports/serial_port.h"
#include "windows/kernel/system_handle.h"
#include "windows/ports/com_line.h"

namespace host {

class ComPort final : public SerialPort, private LineUser {
 public:
  /// Opens the line; null with the last error set when it is in use (5) or cannot be opened.
  static std::shared_ptr<ComPort> Open(std::shared_ptr<ComLine> line);
  ~ComPort() override;

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

  /// What may pass now: everything (the driver waits for it), or what the pace allows, with the time to look again at.
  struct Allowance {
    bool all;
    DWORD bytes;
    Clock::time_point look_again;
  };

  /// A total time-out in milliseconds; none when both parts are 0.
  struct Timeout {
    std::atomic<DWORD> constant{0};
    std::atomic<DWORD> multiplier{0};  // for each byte asked for
  };

  explicit ComPort(std::shared_ptr<ComLine> line);
  void Wake() override;

  DWORD InputWaiting() const;
  Allowance MayRead(DWORD wanted);
  Allowance MayWrite(DWORD wanted);
  template <class MayMove, class MoveSome>
  BOOL Transfer(DWORD bytes, DWORD* done, const Timeout& timeout, MayMove may_move, MoveSome move_some);
  BOOL ReadSome(char* buffer, DWORD bytes, DWORD* read);
  BOOL WriteSome(const char* bytes, DWORD count, DWORD* written);
  template <class Call>
  BOOL Overlapped(Call call, DWORD* count);
  bool WaitForDriver(std::uint64_t start, DWORD* mask);
  static Clock::time_point DeadlineOf(const Timeout& timeout, DWORD bytes);

  const std::shared_ptr<ComLine> line_;
  SharedHandle handle_;
  const SystemHandle wake_{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};         // WaitEvent shall look again
  const SystemHandle closed_event_{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};  // the handle has been closed
  std::atomic<bool> closed_{false};
  std::atomic<bool> waiting_{false};            // a thread is in WaitEvent
  std::atomic<bool> mask_is_drivers_{false};    // else set while another received
  std::atomic<std::uint64_t> mask_changes_{0};  // how often the mask has been set << 32, and the mask

  std::atomic<bool> continue_on_xoff_{false};  // of the settings: where the driver is a tty, it has no place for it
  Timeout read_timeout_;
  Timeout write_timeout_;
};

}  // namespace host

#endif
