// The total time-outs of a serial port's reads and writes.
#ifndef QXHOST_COMMON_PORTS_TRANSFER_TIMEOUTS_H
#define QXHOST_COMMON_PORTS_TRANSFER_TIMEOUTS_H

#include <windows.h>

#include <atomic>
#include <cstdint>

#include "common/sync/deadline.h"

namespace host {

/// Milliseconds for a whole transfer; none when both parts are 0. May be set while transfers are under way: they keep
/// the deadline they have begun with.
class TotalTimeout {
 public:
  void Set(DWORD constant, DWORD multiplier) {
    constant_ = constant;
    multiplier_ = multiplier;
  }

  /// For a transfer of so many bytes that begins now.
  Deadline DeadlineFor(DWORD bytes) const {
    const std::uint64_t total = constant_ + std::uint64_t{multiplier_} * bytes;
    return total == 0 ? kNever : std::chrono::steady_clock::now() + std::chrono::milliseconds(total);
  }

 private:
  std::atomic<DWORD> constant_{0};
  std::atomic<DWORD> multiplier_{0};  // for each byte asked for
};

struct TransferTimeouts {
  TotalTimeout read;
  TotalTimeout write;

  /// False, and nothing is set, when an interval is asked for: that is not offered.
  bool Set(const COMMTIMEOUTS& timeouts) {
    if (timeouts.ReadIntervalTimeout != 0) return false;
    read.Set(timeouts.ReadTotalTimeoutConstant, timeouts.ReadTotalTimeoutMultiplier);
    write.Set(timeouts.WriteTotalTimeoutConstant, timeouts.WriteTotalTimeoutMultiplier);
    return true;
  }
};

}  // namespace host

#endif
