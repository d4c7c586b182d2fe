#include "common/ports/line_port.h"

#include <algorithm>
#include <chrono>

#include "common/calls/errors.h"
#include "common/ports/port_options.h"

namespace host {

void LinePort::Closed() {
  closed_ = true;
  EndTransfers();
  Wake();
  line_->StopWaiting();
  line_->Leave(this);
}

// ---- Events

BOOL LinePort::SetMask(DWORD mask) {
  constexpr DWORD kEvents = EV_RXCHAR | EV_ERR;
  if ((mask & ~kEvents) != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (mask_.Set(mask)) Wake();
  return TRUE;
}

BOOL LinePort::WaitEvent(DWORD* mask) {
  *mask = 0;
  const CommWait wait(&mask_);
  if (!wait.allowed()) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const bool input_counts = (wait.events() & EV_RXCHAR) != 0;
  while (!closed_) {
    const Allowance input = input_counts ? MayRead(1) : Allowance{0, true, false, kNever};
    const bool paced_input = !input.all && input.bytes != 0;
    DWORD seen = paced_input ? DWORD{EV_RXCHAR} : 0;
    const bool failed = !paced_input && !AwaitEvent(wait, input, &seen);
    if (closed_) break;
    if (wait.ended()) return TRUE;
    if (failed) return Fail(ERROR_IO_DEVICE, FALSE);
    if (seen == 0) continue;
    *mask = seen;
    return TRUE;
  }
  return Fail(ERROR_OPERATION_ABORTED, FALSE);
}

// ---- Bytes

LinePort::Allowance LinePort::MayRead(DWORD wanted) {
  if (!Receives()) return {0, false, false, kNever};
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {wanted, true, true, kNever};
  const DWORD waiting = InputWaiting();
  const PacedWay::Allowance paced = line_->in.Ready(waiting, baud);
  const DWORD bytes = std::min(static_cast<DWORD>(paced.bytes), wanted);
  return {bytes, false, bytes != 0 || waiting == 0, paced.look_again};
}

LinePort::Allowance LinePort::MayWrite(DWORD wanted) {
  const std::uint32_t baud = PortPace();
  if (baud == 0) return {wanted, true, true, kNever};
  const PacedWay::Allowance paced = line_->out.Ready(wanted, baud);
  const auto bytes = static_cast<DWORD>(paced.bytes);
  return {bytes, false, bytes != 0, paced.look_again};
}

// Moves bytes until all have passed, the total time-out is over, the line has failed or the handle has been closed.
template <class MoveSome>
DWORD LinePort::Transfer(Way way, const char* buffer, DWORD bytes, DWORD* done, MoveSome move_some) {
  const bool in = way == Way::kIn;
  PacedWay& pace = in ? line_->in : line_->out;
  const Deadline deadline = (in ? timeouts_.read : timeouts_.write).DeadlineFor(bytes);
  while (*done < bytes && !closed_) {
    const Allowance may = in ? MayRead(bytes - *done) : MayWrite(bytes - *done);
    DWORD count = 0;
    const DWORD error = may.bytes != 0 ? move_some(may.bytes, &count) : NO_ERROR;
    if (error == NO_ERROR && count != 0) {
      pace.Passed(count);
      ShowPortBytes(line_->port(), in, {buffer + *done, count});
      *done += count;
    }
    if (closed_) break;
    if (error != NO_ERROR) return *done > 0 ? NO_ERROR : error;
    const bool waited_for = may.all && waiting_ == Waiting::kByDriver;
    if (waited_for || std::chrono::steady_clock::now() >= deadline) return NO_ERROR;
    const bool failed = count == 0 && !AwaitLine(way, may.line_decides, std::min(deadline, may.look_again));
    if (failed && !closed_) return *done > 0 ? NO_ERROR : ERROR_IO_DEVICE;
  }
  return *done >= bytes ? NO_ERROR : ERROR_OPERATION_ABORTED;
}

BOOL LinePort::Read(void* buffer, DWORD bytes, DWORD* read) {
  char* const to = static_cast<char*>(buffer);
  const auto read_some = [&](DWORD some, DWORD* count) { return ReadSome(to + *read, some, count); };
  return Done(Transfer(Way::kIn, to, bytes, read, read_some));
}

BOOL LinePort::Write(const void* buffer, DWORD bytes, DWORD* written) {
  if (!line_->BeginWriting(closed_)) return Fail(ERROR_OPERATION_ABORTED, FALSE);
  const char* const from = static_cast<const char*>(buffer);
  const auto write_some = [&](DWORD some, DWORD* count) { return WriteSome(from + *written, some, count); };
  const DWORD error = Transfer(Way::kOut, from, bytes, written, write_some);
  line_->out.Rest();
  line_->EndWriting();  // may change the last error
  return Done(error);
}

// ---- Settings

BOOL LinePort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
  return timeouts_.Set(timeouts) ? TRUE : Fail(ERROR_INVALID_PARAMETER, FALSE);
}

}  // namespace host
