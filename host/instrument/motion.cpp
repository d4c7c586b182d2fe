// Simulated motion.
#include "instrument/motion.h"

#include <chrono>
#include <utility>

#include "instrument/distance_meter.h"
#include "instrument/event_window.h"

namespace host::instrument {

namespace {

constexpr std::uint64_t kStepMs = 100;
constexpr std::uint64_t kAimMs = 6000;  // turning to a target and resting on it
constexpr double kTurnShare = 0.6;      // of that time
constexpr double kTurn = 2 * 3.14159265358979323846;
constexpr double kHorizon = kTurn / 4;
constexpr double kSteepest = 0.5;      // radians above and below the horizon
constexpr double kLargestTilt = 3e-4;  // radians, about a minute of arc
constexpr double kNearest = 1.5;       // metres
constexpr double kFarthest = 250.0;
constexpr std::uint32_t kOperatorsMode = 1;
constexpr std::uint32_t kOperatorsTarget = 0;
constexpr double kNoise = 2e-7;  // radians, 0.04 second of arc

/// Numbers from 0 to 1 by position (the finaliser of the SplitMix64 generator).
double Uniform(std::uint64_t seed, std::uint64_t position) {
  std::uint64_t x = seed * 0x9E3779B97F4A7C15u + position * 0xD1B54A32D192ED03u + 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return static_cast<double>((x ^ (x >> 31)) >> 11) * 0x1.0p-53;
}

/// From -1 to 1.
double Centred(double part) { return 2 * part - 1; }

/// From 0 to 1 with no jerk at either end.
double Ease(double part) {
  const double p = part < 0 ? 0 : part > 1 ? 1 : part;
  return p * p * (3 - 2 * p);
}

/// From one target to the next, then at rest there.
double Aim(std::uint64_t seed, std::uint64_t milliseconds) {
  const std::uint64_t target = milliseconds / kAimMs;
  const double part = static_cast<double>(milliseconds % kAimMs) / static_cast<double>(kAimMs) / kTurnShare;
  const double from = target == 0 ? 0.5 : Uniform(seed, target - 1);
  return from + (Uniform(seed, target) - from) * Ease(part);
}

double Noise(std::uint64_t seed, std::uint64_t milliseconds) { return kNoise * Centred(Uniform(seed, milliseconds)); }

double Normalised(double angle) { return angle < 0 ? angle + kTurn : angle; }

}  // namespace

Pose Operator::PoseAt(std::uint64_t milliseconds) const {
  Pose pose;
  pose.haf = Normalised(Aim(seed_ + 1, milliseconds) * kTurn + Noise(seed_ + 2, milliseconds));
  pose.vaf = kHorizon + Centred(Aim(seed_ + 3, milliseconds)) * kSteepest + Noise(seed_ + 4, milliseconds);
  pose.har = pose.haf;
  pose.var = pose.vaf;
  pose.xtl = Centred(Aim(seed_ + 5, milliseconds)) * kLargestTilt;
  pose.ytl = Centred(Aim(seed_ + 6, milliseconds)) * kLargestTilt;
  return pose;
}

double Operator::DistanceAt(std::uint64_t milliseconds) const {
  return kNearest + Uniform(seed_ + 7, milliseconds / kAimMs) * (kFarthest - kNearest);
}

bool Operator::MeasuresAt(std::uint64_t milliseconds) const {
  return milliseconds % kAimMs == static_cast<std::uint64_t>(kAimMs * kTurnShare) / kStepMs * kStepMs + kStepMs;
}

Motion::Motion(std::uint64_t seed) : operator_(seed), thread_([this] { Run(); }) {}

Motion::~Motion() {
  {
    std::lock_guard guard(mutex_);
    quit_ = true;
  }
  quit_changed_.notify_all();
  thread_.join();
}

void Motion::Run() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (std::uint64_t now = 0; !quit_; now += kStepMs) {
    lock.unlock();
    Step(now);
    lock.lock();
    quit_changed_.wait_for(lock, std::chrono::milliseconds(kStepMs), [this] { return quit_; });
  }
}

void Motion::Step(std::uint64_t milliseconds) {
  const Pose pose = operator_.PoseAt(milliseconds);
  Angles::Instance().Change([&](Pose& current) { current = pose; });
  DeliverEvents(kAngleEvent | kTiltEvent);
  DistanceMeter& meter = DistanceMeter::Instance();
  meter.SetSlope(operator_.DistanceAt(milliseconds));
  if (operator_.MeasuresAt(milliseconds) && !meter.state().running) {
    measurement_ = meter.Start(kOperatorsMode, kOperatorsTarget);
  } else if (measurement_ != 0 && meter.state().valid) {
    meter.StopUnlessStartedAnew(std::exchange(measurement_, 0));
  }
}

}  // namespace host::instrument
