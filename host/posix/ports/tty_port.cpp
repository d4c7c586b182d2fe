#include "posix/ports/tty_port.h"

#include <errno.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "common/calls/errors.h"
#include "common/ports/port_options.h"
#include "posix/ports/serial_settings.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
constexpr Clock::time_point kNoEnd = Clock::time_point::max();
// An allowance of everything there is, which may be nothing.
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

int Poll(pollfd* descriptors, nfds_t count, Clock::time_point until) {
  if (until == kNoEnd) return poll(descriptors, count, -1);
  const auto left = std::max(std::chrono::nanoseconds(0), std::chrono::nanoseconds(until - Clock::now()));
  const timespec time{static_cast<time_t>(left.count() / 1000000000), static_cast<long>(left.count() % 1000000000)};
  return ppoll(descriptors, count, &time, nullptr);
}

// For results of read and write: 0 when they should be tried again later, -1 when the line is gone.
long TryLater(ssize_t result) {
  if (result > 0) return result;
  return result < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : -1;
}

class OnlyOne {
 public:
  explicit OnlyOne(std::atomic<bool>* taken) : taken_(taken), first_(!taken->exchange(true)) {}
  ~OnlyOne() {
    if (first_) *taken_ = false;
  }
  OnlyOne(const OnlyOne&) = delete;
  OnlyOne& operator=(const OnlyOne&) = delete;
  bool first() const { return first_; }

 private:
  std::atomic<bool>* taken_;
  bool first_;
};

}  // namespace

std::shared_ptr<TtyPort> TtyPort::Open(std::shared_ptr<TtyLine> line) {
  std::shared_ptr<TtyPort> port(new TtyPort(std::move(line)));
  DWORD error = ERROR_TOO_MANY_OPEN_FILES;
  if (port->wake_.get() >= 0 && port->closed_wake_.get() >= 0) error = port->line_->Join(port.get());
  if (error != NO_ERROR) return Fail(error, std::shared_ptr<TtyPort>());
  port->tty_ = port->line_->tty();
  return port;
}

TtyPort::TtyPort(std::shared_ptr<TtyLine> line)
    : line_(std::move(line)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      closed_wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      state_(DefaultSerialState()) {}

TtyPort::~TtyPort() { line_->Leave(this); }

void TtyPort::Closed() {
  closed_ = true;
  eventfd_write(closed_wake_.get(), 1);
  Wake();
  line_->StopWaiting();
  line_->Leave(this);
}

void TtyPort::Wake() { eventfd_write(wake_.get(), 1); }

// ---- Events

BOOL TtyPort::SetMask(DWORD mask) {
  if ((mask & ~(EV_RXCHAR | EV_ERR)) != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  std::uint64_t old = mask_changes_.load();
  while (!mask_changes_.compare_exchange_weak(old, ((old >> 32) + 1) << 32 | mask)) {
  }
  if (waiting_) Wake();
  return TRUE;
}

BOOL TtyPort::WaitEvent(DWORD* mask) {
  *mask = 0;
  const OnlyOne waiter(&waiting_);
  const std::uint64_t start = mask_changes_.load();
  const auto events = static_cast<DWORD>(start);
  if (!waiter.first() || events == 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  for (;;) {
    const Allowance may_read = (events & EV_RXCHAR) != 0 ? MayRead(1) : Allowance{0, 0, kNoEnd};
    const bool all = may_read.bytes == kAll;
    const bool paced_ready = !all && may_read.bytes != 0;
    const Waited waited = paced_ready ? Waited::kReady : WaitForTty(wake_, may_read.events, may_read.look_again);
    if (closed_) return Fail(ERROR_OPERATION_ABORTED, FALSE);
    if (mask_changes_.load() != start) return TRUE;
    if (waited == Waited::kBroken) return Fail(ERROR_IO_DEVICE, FALSE);
    if (paced_ready || (all && waited == Waited::kReady)) {
      *mask = EV_RXCHAR;
      return TRUE;
    }
  }
}

// Waits for the events on the tty (0: not looked at), for the event descriptor, or for the time.
TtyPort::Waited TtyPort::WaitForTty(const FileDescriptor& wake, short events, Clock::time_point until) {
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
  return events == POLLIN && InputWaiting() > 0 ? Waited::kReady : Waited::kBroken;
}

// ---- Bytes

// Bytes received and not yet read; -1 when the line has hung up.
long TtyPort::InputWaiting() const {
  int waiting = 0;
  return ioctl(tty_->get(), FIONREAD, &waiting) == 0 ? waiting : -1;
}

TtyPort::Allowance TtyPort::MayRead(std::size_t wanted) {
  if (!line_->Receives(this)) return {0, 0, kNoEnd};
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {kAll, POLLIN, kNoEnd};
  const long waiting = std::max(0L, InputWaiting());
  const PacedWay::Allowance paced = line_->in.Ready(static_cast<std::size_t>(waiting), baud);
  if (paced.bytes > 0) return {std::min(paced.bytes, wanted), POLLIN, kNoEnd};
  if (waiting == 0) return {0, POLLIN, kNoEnd};
  return {0, 0, paced.look_again};
}

TtyPort::Allowance TtyPort::MayWrite(std::size_t wanted) {
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {wanted, POLLOUT, kNoEnd};
  const PacedWay::Allowance paced = line_->out.Ready(wanted, baud);
  if (paced.bytes > 0) return {paced.bytes, POLLOUT, kNoEnd};
  return {0, 0, paced.look_again};
}

// Reads what is there; 0 when there is nothing, -1 when the line has hung up.
long TtyPort::ReadSome(char* buffer, std::size_t size) {
  const long count = TryLater(::read(tty_->get(), buffer, size));
  if (count <= 0) return count;
  line_->in.Passed(static_cast<std::size_t>(count));
  ShowPortBytes(line_->port(), true, {buffer, static_cast<std::size_t>(count)});
  return count;
}

long TtyPort::WriteSome(const char* bytes, std::size_t size) {
  const long count = TryLater(::write(tty_->get(), bytes, size));
  if (count <= 0) return count;
  line_->out.Passed(static_cast<std::size_t>(count));
  ShowPortBytes(line_->port(), false, {bytes, static_cast<std::size_t>(count)});
  return count;
}

// Moves bytes until all have passed, the total time-out is over or the line has hung up.
template <class MayMove, class MoveSome>
BOOL TtyPort::Transfer(DWORD bytes, DWORD* done, const Timeout& timeout, MayMove may_move, MoveSome move_some) {
  std::optional<Clock::time_point> deadline;
  while (*done < bytes) {
    const std::size_t left = bytes - *done;
    const Allowance may = may_move(left);
    const long count = may.bytes == 0 ? 0 : move_some(*done, std::min(may.bytes, left));
    if (count < 0) return *done > 0 ? TRUE : Fail(ERROR_IO_DEVICE, FALSE);
    *done += static_cast<DWORD>(count);
    if (count > 0) continue;
    if (!deadline) deadline = DeadlineOf(timeout, bytes);
    if (Clock::now() >= *deadline) return TRUE;
    WaitForTty(closed_wake_, may.events, std::min(*deadline, may.look_again));
    if (closed_) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  }
  return TRUE;
}

BOOL TtyPort::Read(void* buffer, DWORD bytes, DWORD* read) {
  const auto may_read = [this](std::size_t wanted) { return MayRead(wanted); };
  const auto read_some = [&](DWORD done, std::size_t size) {
    return ReadSome(static_cast<char*>(buffer) + done, size);
  };
  return Transfer(bytes, read, read_timeout_, may_read, read_some);
}

BOOL TtyPort::Write(const void* buffer, DWORD bytes, DWORD* written) {
  if (!line_->BeginWriting(closed_)) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  const auto may_write = [this](std::size_t wanted) { return MayWrite(wanted); };
  const auto write_some = [&](DWORD done, std::size_t size) {
    return WriteSome(static_cast<const char*>(buffer) + done, size);
  };
  const BOOL result = Transfer(bytes, written, write_timeout_, may_write, write_some);
  line_->out.Rest();
  line_->EndWriting();
  return result;
}

// ---- Settings

TtyPort::Clock::time_point TtyPort::DeadlineOf(const Timeout& timeout, DWORD bytes) {
  const std::uint64_t total = timeout.constant + std::uint64_t{timeout.multiplier} * bytes;
  return total == 0 ? kNoEnd : Clock::now() + std::chrono::milliseconds(total);
}

BOOL TtyPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
  if (timeouts.ReadIntervalTimeout != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  read_timeout_.constant = timeouts.ReadTotalTimeoutConstant;
  read_timeout_.multiplier = timeouts.ReadTotalTimeoutMultiplier;
  write_timeout_.constant = timeouts.WriteTotalTimeoutConstant;
  write_timeout_.multiplier = timeouts.WriteTotalTimeoutMultiplier;
  return TRUE;
}

BOOL TtyPort::GetState(DCB* state) {
  const std::lock_guard<std::mutex> lock(state_mutex_);
  *state = state_;
  return TRUE;
}

BOOL TtyPort::SetState(const DCB& state) {
  if (!SerialStateSupported(state)) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const std::lock_guard<std::mutex> lock(state_mutex_);
  if (const DWORD error = line_->Configure(state)) return Fail(error, FALSE);
  state_ = state;
  return TRUE;
}

// A tty reports no line-status errors, and what has been written is out of this port's hands.
BOOL TtyPort::ClearError(DWORD* errors, COMSTAT* status) {
  if (errors != nullptr) *errors = 0;
  if (status == nullptr) return TRUE;
  *status = {};
  const Allowance may = MayRead(std::numeric_limits<DWORD>::max());
  if (may.bytes != kAll) {
    status->cbInQue = static_cast<DWORD>(may.bytes);
    return TRUE;
  }
  const long waiting = InputWaiting();
  if (waiting < 0) return Fail(ERROR_IO_DEVICE, FALSE);
  status->cbInQue = static_cast<DWORD>(waiting);
  return TRUE;
}

BOOL TtyPort::Purge(DWORD flags) {
  if ((flags & (PURGE_RXABORT | PURGE_TXABORT)) != 0) return Fail(ERROR_NOT_SUPPORTED, FALSE);
  if (flags == 0 || (flags & ~(PURGE_RXCLEAR | PURGE_TXCLEAR)) != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const bool input = (flags & PURGE_RXCLEAR) != 0 && line_->Receives(this);
  if (input && tcflush(tty_->get(), TCIFLUSH) != 0) return Fail(ErrorFromErrno(errno), FALSE);
  const bool output = (flags & PURGE_TXCLEAR) != 0;
  if (output && tcflush(tty_->get(), TCOFLUSH) != 0) return Fail(ErrorFromErrno(errno), FALSE);
  return TRUE;
}

}  // namespace host
