#include "windows/ports/com_port.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "common/calls/errors.h"
#include "common/ports/port_options.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
constexpr Clock::time_point kNever = Clock::time_point::max();

// Milliseconds from now on, rounded up.
DWORD Until(Clock::time_point time) {
  if (time == kNever) return INFINITE;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()).count();
  return left <= 0 ? 0 : static_cast<DWORD>(std::min<std::int64_t>(left, INFINITE - 1));
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

// One call of the driver that may go on after its return.
struct Pending {
  Pending() { overlapped.hEvent = event.get(); }
  const SystemHandle event{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED overlapped = {};
};

}  // namespace

std::shared_ptr<ComPort> ComPort::Open(std::shared_ptr<ComLine> line) {
  std::shared_ptr<ComPort> port(new ComPort(std::move(line)));
  DWORD error = ERROR_TOO_MANY_OPEN_FILES;
  if (port->wake_.valid() && port->closed_event_.valid()) error = port->line_->Join(port.get());
  if (error != NO_ERROR) return Fail(error, std::shared_ptr<ComPort>());
  port->handle_ = port->line_->handle();
  return port;
}

ComPort::ComPort(std::shared_ptr<ComLine> line) : line_(std::move(line)) {}

ComPort::~ComPort() { line_->Leave(this); }

void ComPort::Closed() {
  closed_ = true;
  ::SetEvent(closed_event_.get());
  line_->StopWaiting();
  line_->Leave(this);
}

void ComPort::Wake() { ::SetEvent(wake_.get()); }

// ---- Events

BOOL ComPort::SetMask(DWORD mask) {
  if ((mask & ~static_cast<DWORD>(EV_RXCHAR | EV_ERR)) != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  std::uint64_t old = mask_changes_.load();
  while (!mask_changes_.compare_exchange_weak(old, ((old >> 32) + 1) << 32 | mask)) {
  }
  if (waiting_) Wake();
  if (!line_->Receives(this)) return TRUE;
  mask_is_drivers_ = true;
  return ::SetCommMask(handle_->get(), mask);
}

BOOL ComPort::WaitEvent(DWORD* mask) {
  *mask = 0;
  const OnlyOne waiter(&waiting_);
  const std::uint64_t start = mask_changes_.load();
  const auto events = static_cast<DWORD>(start);
  if (!waiter.first() || events == 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  for (;;) {
    const Allowance may_read = (events & EV_RXCHAR) != 0 ? MayRead(1) : Allowance{true, 0, kNever};
    DWORD seen = 0;
    const bool broken = may_read.all && !WaitForDriver(start, &seen);
    if (!may_read.all && may_read.bytes != 0) seen = EV_RXCHAR;
    if (!may_read.all && may_read.bytes == 0) ::WaitForSingleObject(wake_.get(), Until(may_read.look_again));
    if (closed_) return Fail(ERROR_OPERATION_ABORTED, FALSE);
    if (mask_changes_.load() != start) return TRUE;
    if (broken) return Fail(ERROR_IO_DEVICE, FALSE);
    if (seen != 0) {
      *mask = seen;
      return TRUE;
    }
  }
}

// Waits until the driver reports an event, or somebody sets the mask or closes the handle. False: the driver failed.
bool ComPort::WaitForDriver(std::uint64_t start, DWORD* mask) {
  const HANDLE port = handle_->get();
  Pending wait;
  DWORD events = 0;
  if (!mask_is_drivers_.exchange(true) && ::SetCommMask(port, static_cast<DWORD>(start)) == FALSE) return false;
  if (::WaitCommEvent(port, &events, &wait.overlapped) == FALSE && GetLastError() != ERROR_IO_PENDING) return false;
  const auto go_on = [&] { return mask_changes_.load() == start && !closed_; };
  const HANDLE ends[] = {wait.event.get(), wake_.get(), closed_event_.get()};
  while (go_on() && ::WaitForMultipleObjects(3, ends, FALSE, INFINITE) != WAIT_OBJECT_0) {
  }
  // Setting the mask ends the driver's wait.
  while (::WaitForSingleObject(wait.event.get(), 0) != WAIT_OBJECT_0) {
    ::SetCommMask(port, static_cast<DWORD>(mask_changes_.load()));
    ::WaitForSingleObject(wait.event.get(), 1);
  }
  // What it has seen tells how it ended; its status may say "pending" for good under Wine, on a busy machine.
  *mask = events;
  return events != 0 || !go_on();
}

// ---- Bytes

DWORD ComPort::InputWaiting() const {
  DWORD errors = 0;
  COMSTAT status = {};
  return ::ClearCommError(handle_->get(), &errors, &status) != FALSE ? status.cbInQue : 0;
}

ComPort::Allowance ComPort::MayRead(DWORD wanted) {
  if (!line_->Receives(this)) return {false, 0, kNever};
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {true, wanted, kNever};
  const DWORD waiting = InputWaiting();
  const PacedWay::Allowance paced = line_->in.Ready(waiting, baud);
  const Clock::time_point soon = Clock::now() + std::chrono::milliseconds(1);  // the driver tells only of what comes
  return {false, std::min(static_cast<DWORD>(paced.bytes), wanted), waiting == 0 ? soon : paced.look_again};
}

ComPort::Allowance ComPort::MayWrite(DWORD wanted) {
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {true, wanted, kNever};
  const PacedWay::Allowance paced = line_->out.Ready(wanted, baud);
  return {false, static_cast<DWORD>(paced.bytes), paced.look_again};
}

// Makes one call and waits for its end; a call that the driver's time-out ends has moved fewer bytes.
template <class Call>
BOOL ComPort::Overlapped(Call call, DWORD* count) {
  const HANDLE port = handle_->get();
  Pending pending;
  if (call(port, &pending.overlapped) == FALSE && GetLastError() != ERROR_IO_PENDING) return FALSE;
  const HANDLE ends[] = {pending.event.get(), closed_event_.get()};
  if (::WaitForMultipleObjects(2, ends, FALSE, INFINITE) != WAIT_OBJECT_0) ::CancelIoEx(port, &pending.overlapped);
  if (::GetOverlappedResult(port, &pending.overlapped, count, TRUE) != FALSE) return TRUE;
  if (closed_) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  return GetLastError() == ERROR_TIMEOUT ? TRUE : FALSE;
}

BOOL ComPort::ReadSome(char* buffer, DWORD bytes, DWORD* read) {
  const auto call = [&](HANDLE port, OVERLAPPED* pending) { return ::ReadFile(port, buffer, bytes, nullptr, pending); };
  if (Overlapped(call, read) == FALSE) return FALSE;
  line_->in.Passed(*read);
  if (*read != 0) ShowPortBytes(line_->port(), true, {buffer, *read});
  return TRUE;
}

BOOL ComPort::WriteSome(const char* bytes, DWORD count, DWORD* written) {
  const auto call = [&](HANDLE port, OVERLAPPED* pending) { return ::WriteFile(port, bytes, count, nullptr, pending); };
  if (Overlapped(call, written) == FALSE) return FALSE;
  line_->out.Passed(*written);
  if (*written != 0) ShowPortBytes(line_->port(), false, {bytes, *written});
  return TRUE;
}

// Moves all bytes with one call of the driver, which knows the time-outs; or, as the pace allows, in pieces.
template <class MayMove, class MoveSome>
BOOL ComPort::Transfer(DWORD bytes, DWORD* done, const Timeout& timeout, MayMove may_move, MoveSome move_some) {
  const Clock::time_point deadline = DeadlineOf(timeout, bytes);
  while (*done < bytes) {
    const Allowance may = may_move(bytes - *done);
    DWORD count = 0;
    if (may.bytes != 0 && move_some(*done, may.bytes, &count) == FALSE) return *done > 0 ? TRUE : FALSE;
    *done += count;
    if (may.all || Clock::now() >= deadline) return TRUE;
    if (count != 0) continue;
    ::WaitForSingleObject(closed_event_.get(), Until(std::min(deadline, may.look_again)));
    if (closed_) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  }
  return TRUE;
}

BOOL ComPort::Read(void* buffer, DWORD bytes, DWORD* read) {
  const auto may_read = [this](DWORD wanted) { return MayRead(wanted); };
  const auto read_some = [&](DWORD done, DWORD count, DWORD* got) {
    return ReadSome(static_cast<char*>(buffer) + done, count, got);
  };
  return Transfer(bytes, read, read_timeout_, may_read, read_some);
}

BOOL ComPort::Write(const void* buffer, DWORD bytes, DWORD* written) {
  if (!line_->BeginWriting(closed_)) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  const auto may_write = [this](DWORD wanted) { return MayWrite(wanted); };
  const auto write_some = [&](DWORD done, DWORD count, DWORD* gone) {
    return WriteSome(static_cast<const char*>(buffer) + done, count, gone);
  };
  const BOOL result = Transfer(bytes, written, write_timeout_, may_write, write_some);
  line_->out.Rest();
  line_->EndWriting();
  return result;
}

// ---- Settings

ComPort::Clock::time_point ComPort::DeadlineOf(const Timeout& timeout, DWORD bytes) {
  const std::uint64_t total = timeout.constant + std::uint64_t{timeout.multiplier} * bytes;
  return total == 0 ? kNever : Clock::now() + std::chrono::milliseconds(total);
}

BOOL ComPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
  if (timeouts.ReadIntervalTimeout != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  read_timeout_.constant = timeouts.ReadTotalTimeoutConstant;
  read_timeout_.multiplier = timeouts.ReadTotalTimeoutMultiplier;
  write_timeout_.constant = timeouts.WriteTotalTimeoutConstant;
  write_timeout_.multiplier = timeouts.WriteTotalTimeoutMultiplier;
  COMMTIMEOUTS drivers = timeouts;
  return ::SetCommTimeouts(handle_->get(), &drivers);
}

BOOL ComPort::GetState(DCB* state) {
  state->DCBlength = sizeof *state;
  if (::GetCommState(handle_->get(), state) == FALSE) return FALSE;
  state->fTXContinueOnXoff = continue_on_xoff_;
  return TRUE;
}

BOOL ComPort::SetState(const DCB& state) {
  DCB drivers = state;
  if (::SetCommState(handle_->get(), &drivers) == FALSE) return FALSE;
  continue_on_xoff_ = state.fTXContinueOnXoff != 0;
  return TRUE;
}

BOOL ComPort::ClearError(DWORD* errors, COMSTAT* status) {
  COMSTAT drivers = {};
  if (::ClearCommError(handle_->get(), errors, &drivers) == FALSE) return FALSE;
  if (status == nullptr) return TRUE;
  *status = drivers;
  const Allowance may = MayRead(std::numeric_limits<DWORD>::max());
  if (!may.all) status->cbInQue = may.bytes;
  return TRUE;
}

// What has been received is the receiver's.
BOOL ComPort::Purge(DWORD flags) {
  const DWORD input = PURGE_RXCLEAR | PURGE_RXABORT;
  const DWORD own = line_->Receives(this) ? flags : flags & ~input;
  return (own == 0 && flags != 0) || ::PurgeComm(handle_->get(), own) != FALSE ? TRUE : FALSE;
}

}  // namespace host
