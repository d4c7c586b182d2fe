// Focusing takes seconds: a worker thread carries a job out and reports its outcome.
#ifndef QXCM_COMMANDS_MEASURE_FOCUS_H
#define QXCM_COMMANDS_MEASURE_FOCUS_H

#include <atomic>
#include <cstdint>

#include "platform/lock.h"
#include "platform/thread.h"
#include "platform/windows_api.h"
#include "protocol/service.h"

namespace qxcm {

/// One focusing operation.
struct FocusJob {
  enum class Kind { kAutofocus, kToDistance, kBySteps, kToPosition };
  Kind kind = Kind::kAutofocus;
  double distance = 0.0;    // metres, for kToDistance
  std::int32_t number = 0;  // steps or position
};

/// At most one job of a service runs at a time. Any thread; Stop is the last call.
class FocusWorker {
 public:
  explicit FocusWorker(Service& service) : service_(service) {}

  /// Starts a job; false while one runs, after Stop, or when the platform has no thread to give. The outcome is sent
  /// as a "FOS" message.
  bool Start(const FocusJob& job);

  /// Whether a job waits for its outcome.
  bool running() const { return running_.load(std::memory_order_acquire); }

  /// Refuses further jobs and waits for the running one: as long as its wait for the focusing side may take.
  void Stop();

 private:
  void Run(const FocusJob& job);

  Service& service_;
  Lock lock_;  // the worker lock
  bool stopping_ QXCM_GUARDED_BY(lock_) = false;
  Thread thread_ QXCM_GUARDED_BY(lock_);
  std::atomic<bool> running_{false};  // from Start until the outcome is about to be sent
};

}  // namespace qxcm

#endif
