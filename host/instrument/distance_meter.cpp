// The distance meter, its thread and its system library calls.
#include "instrument/distance_meter.h"

#include <chrono>

#include "instrument/angles.h"
#include "instrument/event_window.h"
#include "instrument/system_calls.h"

namespace host::instrument {

DistanceMeter& DistanceMeter::Instance() {
  static DistanceMeter meter;
  return meter;
}

DistanceMeter::~DistanceMeter() { Rest(); }

void DistanceMeter::Rest() {
  {
    std::lock_guard guard(mutex_);
    quit_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
  std::lock_guard guard(mutex_);
  state_.running = false;
  end_announced_ = true;
  quit_ = false;
}

std::uint64_t DistanceMeter::Start(std::uint32_t mode, std::uint32_t target) {
  std::lock_guard guard(mutex_);
  if (!thread_.joinable()) thread_ = std::thread([this] { Run(); });
  state_.running = true;
  state_.valid = false;
  state_.mode = mode;
  state_.target = target;
  changed_.notify_all();
  return ++started_;
}

void DistanceMeter::Stop() {
  {
    std::lock_guard guard(mutex_);
    StopLocked();
    // Stopped from inside an event, the end is told before the call returns: no new measurement comes between.
    if (end_announced_ || !IsEventWindowThread()) return;
    end_announced_ = true;
  }
  DeliverEvents(kMeasurementEnded);
}

void DistanceMeter::StopUnlessStartedAnew(std::uint64_t start) {
  std::lock_guard guard(mutex_);
  if (started_ == start) StopLocked();
}

void DistanceMeter::StopLocked() {
  if (!state_.running) return;
  state_.running = false;
  end_announced_ = false;
  changed_.notify_all();
}

DistanceMeter::State DistanceMeter::state() const {
  std::lock_guard guard(mutex_);
  return state_;
}

Measured DistanceMeter::last() const {
  std::lock_guard guard(mutex_);
  return last_;
}

void DistanceMeter::SetSlope(double metres) {
  std::lock_guard guard(mutex_);
  state_.slope = metres;
  if (state_.valid) last_.slope = metres;
}

void DistanceMeter::SetTakesMs(std::uint32_t milliseconds) {
  std::lock_guard guard(mutex_);
  state_.takes_ms = milliseconds;
  changed_.notify_all();
}

void DistanceMeter::SetValid(bool valid) {
  bool news = false;
  {
    std::lock_guard guard(mutex_);
    news = valid && !state_.valid && state_.running;
    if (valid) Measure();
    state_.valid = valid;
  }
  if (news) DeliverEvents(kDistanceReady);
}

void DistanceMeter::Reset() {
  std::lock_guard guard(mutex_);
  const bool was_running = state_.running;
  state_ = {};
  last_ = {};
  end_announced_ = !was_running;
  changed_.notify_all();
}

// Under the lock.
void DistanceMeter::Measure() {
  const Pose pose = Angles::Instance().pose();
  last_ = {state_.slope, pose.haf, pose.vaf};
  state_.valid = true;
}

void DistanceMeter::Run() {
  std::unique_lock guard(mutex_);
  const auto announce = [&](std::uint32_t event) {
    guard.unlock();
    DeliverEvents(event);
    guard.lock();
  };
  while (!quit_) {
    if (!end_announced_) {
      end_announced_ = true;
      announce(kMeasurementEnded);
      continue;
    }
    if (!state_.running) {
      changed_.wait(guard);
      continue;
    }
    const std::uint64_t mine = started_;
    const std::chrono::milliseconds time(state_.takes_ms);
    const bool disturbed = changed_.wait_for(guard, time, [&] { return quit_ || !state_.running || started_ != mine; });
    if (disturbed) continue;
    Measure();
    announce(kDistanceReady);
  }
}

}  // namespace host::instrument

using host::instrument::DistanceMeter;
using host::instrument::SystemCall;

std::int32_t WINAPI QxSystemStartDistance(std::uint32_t mode, std::uint32_t target) {
  return SystemCall(5, {std::int64_t{mode}, std::int64_t{target}},
                    [&] { DistanceMeter::Instance().Start(mode, target); });
}

std::int32_t WINAPI QxSystemStopDistance() {
  return SystemCall(6, {}, [] { DistanceMeter::Instance().Stop(); });
}

std::int32_t WINAPI QxSystemGetMeasurement(QxMeasurementRecord* record) {
  return SystemCall(9, {}, [&] {
    const auto last = DistanceMeter::Instance().last();
    *record = {last.slope, {last.horizontal, last.vertical}, {}};
  });
}

std::int32_t WINAPI QxSystemGetMeasurementStatus(QxMeasurementStatus* status) {
  return SystemCall(11, {}, [&] { *status = {DistanceMeter::Instance().state().valid ? 1u : 0u, {}}; });
}
