// Points in time at which a wait ends, by the steady clock.
#ifndef QXHOST_COMMON_SYNC_DEADLINE_H
#define QXHOST_COMMON_SYNC_DEADLINE_H

#include <windows.h>

#include <chrono>

namespace host {

using Deadline = std::chrono::steady_clock::time_point;
constexpr Deadline kNever = Deadline::max();

/// So many milliseconds from now; kNever for INFINITE.
inline Deadline DeadlineAfter(DWORD milliseconds) {
  if (milliseconds == INFINITE) return kNever;
  return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

}  // namespace host

#endif
