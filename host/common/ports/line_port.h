// One opening of a port's line: what is the same on every system.
//
// That is: a port is one's own, who receives on one that is shared, the pace of the line, the total time-outs, the one
// wait for events, and that closing the handle ends what waits. How bytes are moved and waited for is the system's.
#ifndef QXHOST_COMMON_PORTS_LINE_PORT_H
#define QXHOST_COMMON_PORTS_LINE_PORT_H

#include <windows.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "common/ports/comm_mask.h"
#include "common/ports/line.h"
#include "common/ports/serial_port.h"
#include "common/ports/transfer_timeouts.h"
#include "common/sync/deadline.h"

namespace host {

class LinePort : public SerialPort, protected LineUser {
 public:
  std::string Name() const override { return line_->port(); }
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;
  void Closed() override;

  BOOL SetTimeouts(const COMMTIMEOUTS& timeouts) override;
  BOOL SetMask(DWORD mask) override;
  BOOL WaitEvent(DWORD* mask) override;

 protected:
  enum class Way { kIn, kOut };

  /// Who waits for the rest of the bytes when no pace holds them back: a driver that does knows the time-outs.
  enum class Waiting { kByPort, kByDriver };

  /// What may pass now.
  struct Allowance {
    DWORD bytes;          ///< so many of those wanted
    bool all;             ///< they are all that are wanted: no pace
    bool line_decides;    ///< more may pass once the line is ready; else it has no part in that
    Deadline look_again;  ///< when more may pass by the pace
  };

  LinePort(std::shared_ptr<Line> line, Waiting waiting) : line_(std::move(line)), waiting_(waiting) {}

  /// Opens the line. Returns 0 or an error code: 5 when it is in use.
  DWORD Join() { return line_->Join(this); }
  /// To be called by every destructor: Wake is not called afterwards.
  void Leave() { line_->Leave(this); }
  bool Receives() const { return line_->Receives(this); }
  bool closed() const { return closed_; }
  DWORD mask() const { return mask_.events(); }
  Allowance MayRead(DWORD wanted);

 private:
  // What every system does in its own way. An error is a code, 0 for none.

  /// The handle has been closed: AwaitLine does not wait from here on.
  virtual void EndTransfers() = 0;
  /// Bytes received and not yet read; 0 when nobody can tell.
  virtual DWORD InputWaiting() const = 0;
  /// Each moves some bytes, which may be none.
  virtual DWORD ReadSome(char* buffer, DWORD bytes, DWORD* read) = 0;
  virtual DWORD WriteSome(const char* buffer, DWORD bytes, DWORD* written) = 0;
  /// Waits for the time or, when it decides, until the line may be ready. False: the line has failed.
  virtual bool AwaitLine(Way way, bool line_decides, Deadline until) = 0;
  /// Waits for the wait's events, until `input` may have changed, or to be woken. False: the line has failed.
  virtual bool AwaitEvent(const CommWait& wait, const Allowance& input, DWORD* seen) = 0;

  Allowance MayWrite(DWORD wanted);
  template <class MoveSome>
  DWORD Transfer(Way way, const char* buffer, DWORD bytes, DWORD* done, MoveSome move_some);

  const std::shared_ptr<Line> line_;
  const Waiting waiting_;
  std::atomic<bool> closed_{false};
  CommMask mask_;
  TransferTimeouts timeouts_;
};

}  // namespace host

#endif
