#include "posix/ports/tty_port.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

#include "common/calls/errors.h"
#include "posix/ports/serial_settings.h"

namespace host {
namespace {

int Poll(pollfd* descriptors, nfds_t count, Deadline until) {
  if (until == kNever) return poll(descriptors, count, -1);
  const auto now = std::chrono::steady_clock::now();
  const auto left = std::max(std::chrono::nanoseconds(0), std::chrono::nanoseconds(until - now));
  const timespec time{static_cast<time_t>(left.count() / 1000000000), static_cast<long>(left.count() % 1000000000)};
  return ppoll(descriptors, count, &time, nullptr);
}

// For results of read and write, which have moved none when they should be tried again later.
DWORD Moved(ssize_t result, DWORD* count) {
  const bool later = result < 0 && (errno == EAGAIN || errno == EINTR);
  *count = result > 0 ? static_cast<DWORD>(result) : 0;
  return result > 0 || later ? NO_ERROR : ERROR_IO_DEVICE;
}

}  // namespace

std::shared_ptr<TtyPort> TtyPort::Open(const std::shared_ptr<TtyLine>& line) {
  std::shared_ptr<TtyPort> port(new TtyPort(line));
  DWORD error = ERROR_TOO_MANY_OPEN_FILES;
  if (port->wake_.get() >= 0 && port->closed_wake_.get() >= 0) error = port->Join();
  if (error != NO_ERROR) return Fail(error, std::shared_ptr<TtyPort>());
  port->tty_ = line->tty();
  return port;
}

TtyPort::TtyPort(std::shared_ptr<TtyLine> line)
    : LinePort(line, Waiting::kByPort),
      tty_line_(std::move(line)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      closed_wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      state_(DefaultSerialState()) {}

// ---- Waiting

void TtyPort::Wake() { eventfd_write(wake_.get(), 1); }

void TtyPort::EndTransfers() { eventfd_write(closed_wake_.get(), 1); }

bool TtyPort::AwaitLine(Way way, bool line_decides, Deadline until) {
  const short ready = way == Way::kIn ? POLLIN : POLLOUT;
  return WaitForTty(closed_wake_, line_decides ? ready : 0, until) != Waited::kBroken;
}

bool TtyPort::AwaitEvent(const CommWait&, const Allowance& input, DWORD* seen) {
  const Waited waited = WaitForTty(wake_, input.line_decides ? POLLIN : 0, input.look_again);
  if (input.all && waited == Waited::kReady) *seen = EV_RXCHAR;
  return waited != Waited::kBroken;
}

// Waits for the events on the tty (0: not looked at), for the event descriptor, or for the time.
TtyPort::Waited TtyPort::WaitForTty(const FileDescriptor& wake, short events, Deadline until) {
  pollfd descriptors[2] = {{wake.get(), POLLIN, 0}, {tty_->get(), events, 0}};
  const int count = Poll(descriptors, events != 0 ? 2 : 1, until);
  if (count == 0) return Waited::kTimedOut;
  if (count < 0) return Waited::kWoken;  // a signal: look again
  if (descriptors[0].revents != 0) {
    eventfd_t ignored;
    if (&wake == &wake_) eventfd_read(wake.get(), &ignored);
    return Waited::kWoken;
  }
  if ((descriptors[1].revents & ~(POLLIN | POLLOUT)) == 0) return Waited::kReady;
  return events == POLLIN && InputInTty() > 0 ? Waited::kReady : Waited::kBroken;
}

// ---- Bytes

// Bytes received and not yet read; -1 when the line has hung up.
long TtyPort::InputInTty() const {
  int waiting = 0;
  return ioctl(tty_->get(), FIONREAD, &waiting) == 0 ? waiting : -1;
}

DWORD TtyPort::InputWaiting() const { return static_cast<DWORD>(std::max(0L, InputInTty())); }

DWORD TtyPort::ReadSome(char* buffer, DWORD bytes, DWORD* read) {
  return Moved(::read(tty_->get(), buffer, bytes), read);
}

DWORD TtyPort::WriteSome(const char* buffer, DWORD bytes, DWORD* written) {
  return Moved(::write(tty_->get(), buffer, bytes), written);
}

// ---- Settings

BOOL TtyPort::GetState(DCB* state) {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  *state = state_;
  return TRUE;
}

BOOL TtyPort::SetState(const DCB& state) {
  if (!SerialStateSupported(state)) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const std::lock_guard<std::mutex> lock(state_mutex_);
  if (const DWORD error = tty_line_->Configure(state)) return Fail(error, FALSE);
  state_ = state;
  return TRUE;
}

// A tty reports no line-status errors, and what has been written is out of this port's hands.
BOOL TtyPort::ClearError(DWORD* errors, COMSTAT* status) {
  if (errors != nullptr) *errors = 0;
  if (status == nullptr) return TRUE;
  *status = {};
  const Allowance may = MayRead(std::numeric_limits<DWORD>::max());
  if (!may.all) {
    status->cbInQue = may.bytes;
    return TRUE;
  }
  const long waiting = InputInTty();
  if (waiting < 0) return Fail(ERROR_IO_DEVICE, FALSE);
  status->cbInQue = static_cast<DWORD>(waiting);
  return TRUE;
}

BOOL TtyPort::Purge(DWORD flags) {
  if ((flags & (PURGE_RXABORT | PURGE_TXABORT)) != 0) return Fail(ERROR_NOT_SUPPORTED, FALSE);
  if (flags == 0 || (flags & ~(PURGE_RXCLEAR | PURGE_TXCLEAR)) != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const bool input = (flags & PURGE_RXCLEAR) != 0 && Receives();
  if (input && tcflush(tty_->get(), TCIFLUSH) != 0) return Fail(ErrorFromErrno(errno), FALSE);
  const bool output = (flags & PURGE_TXCLEAR) != 0;
  if (output && tcflush(tty_->get(), TCOFLUSH) != 0) return Fail(ErrorFromErrno(errno), FALSE);
  return TRUE;
}

}  // namespace host
