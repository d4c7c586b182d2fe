// The focusing side: what another process of the instrument does when a focus job runs. It and the library share
// nothing but the system library's calls (ordinals 30 to 32 and 64 to 66) and the named focus block with its mutex.
#ifndef QXHOST_INSTRUMENT_FOCUS_SIDE_H
#define QXHOST_INSTRUMENT_FOCUS_SIDE_H

#include <windows.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace host::instrument {

/// The focus block's content, as both sides lay it out (little-endian, 64 bytes).
struct FocusBlockData {
  std::uint32_t unused0[5];
  std::uint32_t state;
  std::uint32_t unused24[3];
  std::int32_t position;
  std::uint32_t distance;  // 0.0001 m
  std::uint8_t unused44;
  std::uint8_t manual;
  std::uint8_t automatic;
  std::uint8_t unused47;
  std::uint32_t owner;
  std::uint32_t event;
  std::uint8_t failed;
  std::uint8_t unused57[7];
};
static_assert(sizeof(FocusBlockData) == 64, "focus block");

/// How a job ends.
enum class FocusAnswer { kSuccess, kFailure, kSilence };

/// Any thread. A job ends after `takes_ms`, as `answer` says, unless Complete ends it before.
class FocusSide {
 public:
  static constexpr std::uint32_t kStandardTakesMs = 200;
  static constexpr std::uint32_t kStandardDistance = 15000;

  /// The instrument's one; made, with the focus block, when first used.
  static std::shared_ptr<FocusSide> Instance();
  /// Lets it go: its block with it, once no call uses it.
  static void Forget();
  FocusSide();
  ~FocusSide();

  /// What a job leaves in the block when it succeeds.
  using Outcome = std::function<void(FocusBlockData&)>;
  void Start(bool automatic, Outcome outcome);
  /// Stops moving: the job still ends as it would, but leaves position and distance as they are.
  void Stop();
  /// Ends the running job now; false when none runs.
  bool Complete(bool failed);

  FocusBlockData Read();
  void Change(const std::function<void(FocusBlockData&)>& change);

  FocusAnswer answer() const;
  void SetAnswer(FocusAnswer answer);
  std::uint32_t takes_ms() const;
  void SetTakesMs(std::uint32_t milliseconds);
  void Reset();

 private:
  void Run();
  void Finish(bool failed, const Outcome& outcome);

  HANDLE block_mutex_ = nullptr;
  HANDLE mapping_ = nullptr;
  void* view_ = nullptr;

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  FocusAnswer answer_ = FocusAnswer::kSuccess;
  std::uint32_t takes_ms_ = kStandardTakesMs;
  bool running_ = false;
  std::uint64_t started_ = 0;
  Outcome outcome_;
  bool quit_ = false;
  std::thread thread_;
};

}  // namespace host::instrument

#endif
