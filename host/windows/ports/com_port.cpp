#include "windows/ports/com_port.h"

#include <algorithm>
#include <chrono>
#include <limits>

#include "common/calls/errors.h"
#include "common/calls/last_error.h"

namespace host {
namespace {

// Milliseconds from now on, rounded up. The driver tells only of what comes while it is asked: where it decides, a
// millisecond is the longest.
DWORD LookAgain(bool line_decides, Deadline until) {
  if (until == kNever) return line_decides ? 1 : INFINITE;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
  const std::int64_t most = line_decides ? 1 : INFINITE - 1;
  return left <= 0 ? 0 : static_cast<DWORD>(std::min<std::int64_t>(left, most));
}

// One call of the driver that may go on after its return.
struct Pending {
  Pending() { overlapped.hEvent = event.get(); }
  const SystemHandle event{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED overlapped = {};
};

}  // namespace

std::shared_ptr<ComPort> ComPort::Open(const std::shared_ptr<ComLine>& line) {
  std::shared_ptr<ComPort> port(new ComPort(line));
  DWORD error = ERROR_TOO_MANY_OPEN_FILES;
  if (port->wake_.valid() && port->closed_event_.valid()) error = port->Join();
  if (error != NO_ERROR) return Fail(error, std::shared_ptr<ComPort>());
  port->handle_ = line->handle();
  return port;
}

// A call on its way out may hold the last reference, with its error set.
ComPort::~ComPort() {
  const KeepLastError keep;
  Leave();
}

// ---- Events

BOOL ComPort::SetMask(DWORD mask) {
  if (LinePort::SetMask(mask) == FALSE) return FALSE;
  if (!Receives()) return TRUE;
  mask_is_drivers_ = true;
  return ::SetCommMask(handle_->get(), mask);
}

bool ComPort::AwaitEvent(const CommWait& wait, const Allowance& input, DWORD* seen) {
  if (input.all) return WaitForDriver(wait, seen);
  ::WaitForSingleObject(wake_.get(), LookAgain(input.line_decides, input.look_again));
  return true;
}

// Waits until the driver reports an event, or somebody sets the mask or closes the handle. False: the driver failed.
bool ComPort::WaitForDriver(const CommWait& wait, DWORD* seen) {
  const HANDLE port = handle_->get();
  Pending pending;
  DWORD events = 0;
  if (!mask_is_drivers_.exchange(true) && ::SetCommMask(port, wait.events()) == FALSE) return false;
  if (::WaitCommEvent(port, &events, &pending.overlapped) == FALSE && GetLastError() != ERROR_IO_PENDING) return false;
  const auto go_on = [&] { return !wait.ended() && !closed(); };
  const HANDLE ends[] = {pending.event.get(), wake_.get()};
  while (go_on() && ::WaitForMultipleObjects(2, ends, FALSE, INFINITE) != WAIT_OBJECT_0) {
  }
  // Setting the mask ends the driver's wait.
  while (::WaitForSingleObject(pending.event.get(), 0) != WAIT_OBJECT_0) {
    ::SetCommMask(port, mask());
    ::WaitForSingleObject(pending.event.get(), 1);
  }
  // What it has seen tells how it ended; its status may say "pending" for good under Wine, on a busy machine.
  *seen = events;
  return events != 0 || !go_on();
}

// ---- Bytes

DWORD ComPort::InputWaiting() const {
  DWORD errors = 0;
  COMSTAT status = {};
  return ::ClearCommError(handle_->get(), &errors, &status) != FALSE ? status.cbInQue : 0;
}

bool ComPort::AwaitLine(Way, bool line_decides, Deadline until) {
  return ::WaitForSingleObject(closed_event_.get(), LookAgain(line_decides, until)) != WAIT_FAILED;
}

// Makes one call and waits for its end; a call that the driver's time-out ends has moved fewer bytes.
template <class Call>
DWORD ComPort::Overlapped(Call call, DWORD* count) {
  const HANDLE port = handle_->get();
  Pending pending;
  if (call(port, &pending.overlapped) == FALSE && GetLastError() != ERROR_IO_PENDING) return GetLastError();
  const HANDLE ends[] = {pending.event.get(), closed_event_.get()};
  if (::WaitForMultipleObjects(2, ends, FALSE, INFINITE) != WAIT_OBJECT_0) {
    do {  // once may not do: Wine does not find a call that is just getting on
      ::CancelIoEx(port, &pending.overlapped);
    } while (::WaitForSingleObject(pending.event.get(), 1) != WAIT_OBJECT_0);
  }
  if (::GetOverlappedResult(port, &pending.overlapped, count, TRUE) != FALSE) return NO_ERROR;
  return GetLastError() == ERROR_TIMEOUT ? NO_ERROR : GetLastError();
}

DWORD ComPort::ReadSome(char* buffer, DWORD bytes, DWORD* read) {
  const auto call = [&](HANDLE port, OVERLAPPED* pending) { return ::ReadFile(port, buffer, bytes, nullptr, pending); };
  return Overlapped(call, read);
}

DWORD ComPort::WriteSome(const char* buffer, DWORD bytes, DWORD* written) {
  const auto call = [&](HANDLE port, OVERLAPPED* pending) {
    return ::WriteFile(port, buffer, bytes, nullptr, pending);
  };
  return Overlapped(call, written);
}

// ---- Settings

BOOL ComPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
  COMMTIMEOUTS drivers = timeouts;
  return LinePort::SetTimeouts(timeouts) != FALSE ? ::SetCommTimeouts(handle_->get(), &drivers) : FALSE;
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
  const DWORD own = Receives() ? flags : flags & ~input;
  return (own == 0 && flags != 0) || ::PurgeComm(handle_->get(), own) != FALSE ? TRUE : FALSE;
}

}  // namespace host
