// The shared block through which the library and the focusing side (another process) work together.
#ifndef QXCM_COMMANDS_MEASURE_FOCUS_BLOCK_H
#define QXCM_COMMANDS_MEASURE_FOCUS_BLOCK_H

#include <cstddef>
#include <cstdint>

#include "platform/shared_block.h"

namespace qxcm {

/// The block's content (little-endian). Both sides use it under the block's mutex, for short reads and writes only.
struct FocusData {
  std::uint32_t unused0[5];
  std::uint32_t state;
  std::uint32_t unused24[3];
  std::int32_t position;
  std::uint32_t distance;  // 0.0001 m
  std::uint8_t unused44;
  std::uint8_t manual;     // not 0: manual focusing runs
  std::uint8_t automatic;  // not 0: autofocus runs
  std::uint8_t unused47;
  std::uint32_t caller;  // who owns the job
  std::uint32_t event;   // handle of the running job's completion event; 0 while no job owns the block
  std::uint8_t failed;   // set by the focusing side before it signals the event
  std::uint8_t unused57[7];
};
static_assert(sizeof(FocusData) == 64, "focus block");
static_assert(offsetof(FocusData, state) == 20 && offsetof(FocusData, position) == 36 &&
                  offsetof(FocusData, manual) == 45 && offsetof(FocusData, caller) == 48 &&
                  offsetof(FocusData, event) == 52 && offsetof(FocusData, failed) == 56,
              "focus block");

/// Opened for each use. Throws std::runtime_error "FileMapping create failed." when there is none to give.
class FocusBlock {
 public:
  FocusBlock();

  FocusData Copy();
  /// Makes a job with this completion event the block's owner; false when another job owns it.
  bool Claim(HANDLE event);
  /// Gives the block free for the next job.
  void Release() noexcept;

 private:
  SharedBlock block_;
};

}  // namespace qxcm

#endif
