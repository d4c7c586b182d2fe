// Blocking on a 32-bit word and waking who blocks on it; time-outs by the monotonic clock.
#ifndef QXHOST_POSIX_SYNC_FUTEX_H
#define QXHOST_POSIX_SYNC_FUTEX_H

#include <atomic>
#include <cstdint>

#include "common/sync/deadline.h"

namespace host {

using FutexWord = std::atomic<std::uint32_t>;
enum class FutexScope { kProcess, kShared };  ///< kShared: in memory that processes share

/// Returns when the word is not, or no longer, `expected`, when woken, or for no reason; false when the deadline has
/// passed.
bool FutexWait(const FutexWord& word, std::uint32_t expected, Deadline deadline, FutexScope scope);

/// Wakes all. The word's memory is not touched and may be gone.
void FutexWake(const FutexWord* word, FutexScope scope);

}  // namespace host

#endif
