// One opening of a serial port on the system's own serial calls.
//
// Settings are the driver's business, and so are the time-outs of what it moves as a whole.
#ifndef QXHOST_WINDOWS_PORTS_COM_PORT_H
#define QXHOST_WINDOWS_PORTS_COM_PORT_H

#include <windows.h>

#include <atomic>
#include <memory>

#include "common/ports/line_port.h"
#include "windows/kernel/system_handle.h"
#include "windows/ports/com_line.h"

namespace host {

class ComPort final : public LinePort {
 public:
  /// Opens the line; null with the last error set when it is in use (5) or cannot be opened.
  static std::shared_ptr<ComPort> Open(const std::shared_ptr<ComLine>& line);
  ~ComPort() override;

  BOOL GetState(DCB* state) override;
  BOOL SetState(const DCB& state) override;
  BOOL SetTimeouts(const COMMTIMEOUTS& timeouts) override;
  BOOL SetMask(DWORD mask) override;
  BOOL ClearError(DWORD* errors, COMSTAT* status) override;
  BOOL Purge(DWORD flags) override;

 private:
  explicit ComPort(std::shared_ptr<ComLine> line) : LinePort(std::move(line), Waiting::kByDriver) {}

  void Wake() override { ::SetEvent(wake_.get()); }
  void EndTransfers() override { ::SetEvent(closed_event_.get()); }
  DWORD InputWaiting() const override;
  DWORD ReadSome(char* buffer, DWORD bytes, DWORD* read) override;
  DWORD WriteSome(const char* buffer, DWORD bytes, DWORD* written) override;
  bool AwaitLine(Way way, bool line_decides, Deadline until) override;
  bool AwaitEvent(const CommWait& wait, const Allowance& input, DWORD* seen) override;

  template <class Call>
  DWORD Overlapped(Call call, DWORD* count);
  bool WaitForDriver(const CommWait& wait, DWORD* seen);

  SharedHandle handle_;
  const SystemHandle wake_{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};         // WaitEvent shall look again
  const SystemHandle closed_event_{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};  // the handle has been closed
  std::atomic<bool> mask_is_drivers_{false};                                        // else set while another received
  std::atomic<bool> continue_on_xoff_{false};  // of the settings: where the driver is a tty, it has no place for it
};

}  // namespace host

#endif
