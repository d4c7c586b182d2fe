// The angle and tilt sensors and their system library calls.
#include "instrument/angles.h"

#include "instrument/system_calls.h"

namespace host::instrument {

Angles& Angles::Instance() {
  static Angles angles;
  return angles;
}

Pose Angles::pose() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return pose_;
}

void Angles::Change(const std::function<void(Pose&)>& change) {
  const std::lock_guard<std::mutex> lock(mutex_);
  change(pose_);
}

namespace {

// The horizontal circle is turned: both horizontal angles read the new value.
void SetHorizontal(double angle) {
  Angles::Instance().Change([=](Pose& pose) { pose.haf = pose.har = angle; });
}

}  // namespace
}  // namespace host::instrument

using host::instrument::Angles;
using host::instrument::SetHorizontal;
using host::instrument::SystemCall;

std::int32_t WINAPI QxSystemGetAngles(QxAngleRecord* record, std::int32_t flag) {
  return SystemCall(8, {flag}, [=] {
    const auto pose = Angles::Instance().pose();
    record->angles = {pose.haf, pose.vaf};
  });
}

std::int32_t WINAPI QxSystemGetTilt(QxPair* tilt) {
  return SystemCall(10, {}, [=] {
    const auto pose = Angles::Instance().pose();
    *tilt = {pose.xtl, pose.ytl};
  });
}

std::int32_t WINAPI QxSystemSetHorizontalAngle(double angle) {
  return SystemCall(15, {angle}, [=] { SetHorizontal(angle); });
}

std::int32_t WINAPI QxSystemSetSignedHorizontalAngle(double angle) {
  return SystemCall(16, {angle}, [=] { SetHorizontal(angle); });
}

std::int32_t WINAPI QxSystemGetReferenceAngles(QxPair* angles) {
  return SystemCall(60, {}, [=] {
    const auto pose = Angles::Instance().pose();
    *angles = {pose.har, pose.var};
  });
}
