// The simulated distance meter: ordinals 5, 6, 9 and 11.
#ifndef QXHOST_INSTRUMENT_DISTANCE_METER_H
#define QXHOST_INSTRUMENT_DISTANCE_METER_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace host::instrument {

/// What a measurement gives; metres and radians.
struct Measured {
  double slope = 0;
  double horizontal = 0;
  double vertical = 0;
};

/// Any thread. A measurement that is started gives a distance after `takes_ms`, and again and again until it is
/// stopped. Each distance is announced as "distance ready", the stop as "measurement ended", on the meter's own thread.
class DistanceMeter {
 public:
  static constexpr double kStandardSlope = 10.0;
  static constexpr std::uint32_t kStandardTakesMs = 300;

  /// The instrument's one.
  static DistanceMeter& Instance();
  ~DistanceMeter();

  /// Ends the measurement and the thread; the next start makes another. No service may be open, and the event window's
  /// thread must be free to handle a last event. A program calls this before it ends: Windows ends all other threads
  /// before the instance goes.
  void Rest();

  /// Starts, or starts anew; returns a number for this start.
  std::uint64_t Start(std::uint32_t mode, std::uint32_t target);
  void Stop();
  /// Stops unless it has been started anew since this start.
  void StopUnlessStartedAnew(std::uint64_t start);

  struct State {
    double slope = kStandardSlope;  // what it measures
    bool valid = false;
    std::uint32_t takes_ms = kStandardTakesMs;
    bool running = false;
    std::uint32_t mode = 1;
    std::uint32_t target = 0;
  };
  State state() const;
  Measured last() const;
  void SetSlope(double metres);
  void SetTakesMs(std::uint32_t milliseconds);
  /// Makes the distance valid (with the current slope and angles) or not; announces it when that is news to a running
  /// measurement.
  void SetValid(bool valid);
  void Reset();

 private:
  DistanceMeter() = default;
  void Run();
  void Measure();
  void StopLocked();

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  State state_;
  Measured last_;
  std::uint64_t started_ = 0;  // counts starts, so that an old measurement's time does not end a new one
  bool end_announced_ = true;
  bool quit_ = false;
  std::thread thread_;
};

}  // namespace host::instrument

#endif
