// An operator at the instrument: turns and tilts it smoothly, aims, and rests now and then.
#ifndef QXHOST_INSTRUMENT_MOTION_H
#define QXHOST_INSTRUMENT_MOTION_H

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "instrument/angles.h"

namespace host::instrument {

/// Where the operator has the instrument at each moment: a pure function of the seed and the time, reproducible.
class Operator {
 public:
  explicit Operator(std::uint64_t seed) : seed_(seed) {}

  /// The pose at this time (milliseconds). Angles carry a noise below a tenth of a second of arc.
  Pose PoseAt(std::uint64_t milliseconds) const;
  /// The slope distance to what is aimed at, metres.
  double DistanceAt(std::uint64_t milliseconds) const;
  /// Whether the operator presses the measuring key at this moment: once for each target, when it has been aimed at.
  bool MeasuresAt(std::uint64_t milliseconds) const;

 private:
  std::uint64_t seed_;
};

/// Moves the instrument's angles and tilts as an operator would, and delivers their events, while it lives.
class Motion {
 public:
  explicit Motion(std::uint64_t seed);
  ~Motion();
  Motion(const Motion&) = delete;
  Motion& operator=(const Motion&) = delete;

 private:
  void Run();
  void Step(std::uint64_t milliseconds);

  const Operator operator_;
  std::mutex mutex_;
  std::condition_variable quit_changed_;
  bool quit_ = false;
  std::uint64_t measurement_ = 0;  // the operator's own, while it runs
  std::thread thread_;
};

}  // namespace host::instrument

#endif
