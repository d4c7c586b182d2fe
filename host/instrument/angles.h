// The simulated angle and tilt sensors: what the system library's ordinals 8, 10, 15, 16 and 60 work on.
#ifndef QXHOST_INSTRUMENT_ANGLES_H
#define QXHOST_INSTRUMENT_ANGLES_H

#include <functional>
#include <mutex>

namespace host::instrument {

/// How the instrument stands; radians, named after the wire keys.
struct Pose {
  double haf = 0, vaf = 0;  // horizontal and vertical angle
  double har = 0, var = 0;  // the same as the reference angles
  double xtl = 0, ytl = 0;  // tilt
};

/// Any thread. A change delivers no event: whoever makes it says so to the event window.
class Angles {
 public:
  /// The instrument's one.
  static Angles& Instance();

  Pose pose() const;
  void Change(const std::function<void(Pose&)>& change);

 private:
  mutable std::mutex mutex_;
  Pose pose_;
};

}  // namespace host::instrument

#endif
