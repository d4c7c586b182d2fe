// One opening of a serial port on a tty of this machine.
#ifndef QXHOST_POSIX_PORTS_TTY_PORT_H
#define QXHOST_POSIX_PORTS_TTY_PORT_H

#include <windows.h>

#include <memory>
#include <mutex>

#include "common/ports/line_port.h"
#include "posix/ports/tty_line.h"

namespace host {

class TtyPort final : public LinePort {
 public:
  /// Opens the line; null with the last error set when it is in use (5) or cannot be opened.
  static std::shared_ptr<TtyPort> Open(const std::shared_ptr<TtyLine>& line);
  ~TtyPort() override { Leave(); }

  BOOL GetState(DCB* state) override;
  BOOL SetState(const DCB& state) override;
  BOOL ClearError(DWORD* errors, COMSTAT* status) override;
  BOOL Purge(DWORD flags) override;

 private:
  /// Why a wait on the tty has ended.
  enum class Waited { kReady, kBroken, kWoken, kTimedOut };

  explicit TtyPort(std::shared_ptr<TtyLine> line);

  void Wake() override;
  void EndTransfers() override;
  DWORD InputWaiting() const override;
  DWORD ReadSome(char* buffer, DWORD bytes, DWORD* read) override;
  DWORD WriteSome(const char* buffer, DWORD bytes, DWORD* written) override;
  bool AwaitLine(Way way, bool line_decides, Deadline until) override;
  bool AwaitEvent(const CommWait& wait, const Allowance& input, DWORD* seen) override;

  long InputInTty() const;
  Waited WaitForTty(const FileDescriptor& wake, short events, Deadline until);

  const std::shared_ptr<TtyLine> tty_line_;
  SharedDescriptor tty_;
  FileDescriptor wake_;         // event descriptor: WaitEvent shall look again
  FileDescriptor closed_wake_;  // event descriptor, never reset: the handle has been closed

  std::mutex state_mutex_;
  DCB state_;  // guarded by state_mutex_
};

}  // namespace host

#endif
