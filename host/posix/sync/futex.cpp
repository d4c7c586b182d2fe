#include "posix/sync/futex.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <ctime>

namespace host {
namespace {

static_assert(FutexWord::is_always_lock_free && sizeof(FutexWord) == sizeof(std::uint32_t));

int Operation(int operation, FutexScope scope) {
  return scope == FutexScope::kProcess ? operation | FUTEX_PRIVATE_FLAG : operation;
}

// The kernel counts the time-out of a bit-set wait from the epoch of the monotonic clock.
timespec ToTimespec(Deadline deadline) {
  const auto since_epoch = deadline.time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(since_epoch);
  const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(since_epoch - seconds);
  return {static_cast<std::time_t>(seconds.count()), static_cast<long>(rest.count())};
}

}  // namespace

bool FutexWait(const FutexWord& word, std::uint32_t expected, Deadline deadline, FutexScope scope) {
  const timespec until = deadline == kNever ? timespec{} : ToTimespec(deadline);
  const long result = syscall(SYS_futex, &word, Operation(FUTEX_WAIT_BITSET, scope), expected,
                              deadline == kNever ? nullptr : &until, nullptr, FUTEX_BITSET_MATCH_ANY);
  return result == 0 || errno != ETIMEDOUT;
}

void FutexWake(const FutexWord* word, FutexScope scope) {
  syscall(SYS_futex, word, Operation(FUTEX_WAKE, scope), INT_MAX, nullptr, nullptr, 0);
}

}  // namespace host
