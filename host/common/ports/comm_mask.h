// A serial port's event mask, and the one thread that waits for its events.
#ifndef QXHOST_COMMON_PORTS_COMM_MASK_H
#define QXHOST_COMMON_PORTS_COMM_MASK_H

#include <windows.h>

#include <atomic>
#include <cstdint>

namespace host {

/// Any thread. No lock: setting the mask never waits for the one that waits for events.
class CommMask {
 public:
  /// Ends a pending wait, however often it is set. True when a thread waits, which is to be woken.
  bool Set(DWORD events) {
    std::uint64_t old = changes_.load();
    while (!changes_.compare_exchange_weak(old, ((old >> 32) + 1) << 32 | events)) {
    }
    return waiting_;
  }
  DWORD events() const { return static_cast<DWORD>(changes_.load()); }

 private:
  friend class CommWait;
  std::atomic<bool> waiting_{false};       // before the mask is looked at
  std::atomic<std::uint64_t> changes_{0};  // how often the mask has been set << 32, and the mask
};

/// One thread's wait for events, from its beginning to its end.
class CommWait {
 public:
  explicit CommWait(CommMask* mask)
      : mask_(*mask), first_(!mask->waiting_.exchange(true)), start_(mask->changes_.load()) {}
  ~CommWait() {
    if (first_) mask_.waiting_ = false;
  }
  CommWait(const CommWait&) = delete;
  CommWait& operator=(const CommWait&) = delete;

  /// False while another thread waits, and when there is nothing to wait for.
  bool allowed() const { return first_ && events() != 0; }
  /// The mask as the wait found it.
  DWORD events() const { return static_cast<DWORD>(start_); }
  /// The mask has been set since.
  bool ended() const { return mask_.changes_.load() != start_; }

 private:
  CommMask& mask_;
  const bool first_;
  const std::uint64_t start_;
};

}  // namespace host

#endif
