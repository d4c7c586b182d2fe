// The simulated operator.
#include "instrument/motion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "instrument/distance_meter.h"
#include "unit/instrument/event_sink.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using host::instrument::Operator;
using host::instrument::Pose;

constexpr std::uint64_t kStepMs = 100;
constexpr std::uint64_t kHourMs = 3600000;
constexpr double kTenthOfASecond = 4.8481368e-7;  // radians

bool Same(const Pose& a, const Pose& b) {
  return a.haf == b.haf && a.vaf == b.vaf && a.har == b.har && a.var == b.var && a.xtl == b.xtl && a.ytl == b.ytl;
}

TEST(Operator, DoesTheSameAgainWithTheSameNumber) {
  const Operator one(7);
  const Operator other(7);
  for (std::uint64_t now = 0; now < kHourMs; now += kStepMs) {
    ASSERT_TRUE(Same(one.PoseAt(now), other.PoseAt(now))) << now;
    ASSERT_EQ(one.DistanceAt(now), other.DistanceAt(now)) << now;
  }
}

TEST(Operator, DoesSomethingElseWithAnotherNumber) {
  EXPECT_FALSE(Same(Operator(1).PoseAt(60000), Operator(2).PoseAt(60000)));
  EXPECT_NE(Operator(1).DistanceAt(60000), Operator(2).DistanceAt(60000));
}

TEST(Operator, TurnsWithoutJumps) {
  const Operator person(3);
  for (std::uint64_t now = 0; now < kHourMs; now += kStepMs) {
    const Pose before = person.PoseAt(now);
    const Pose after = person.PoseAt(now + kStepMs);
    ASSERT_LT(std::fabs(after.haf - before.haf), 0.3) << now;
    ASSERT_LT(std::fabs(after.vaf - before.vaf), 0.05) << now;
    ASSERT_LT(std::fabs(after.xtl - before.xtl), 3e-5) << now;
    ASSERT_LT(std::fabs(after.ytl - before.ytl), 3e-5) << now;
  }
}

TEST(Operator, KeepsTheAnglesOfAnInstrument) {
  const Operator person(4);
  for (std::uint64_t now = 0; now < kHourMs; now += kStepMs) {
    const Pose pose = person.PoseAt(now);
    ASSERT_GE(pose.haf, 0.0);
    ASSERT_LT(pose.haf, 6.2832);
    ASSERT_NEAR(pose.vaf, 1.5708, 0.51);
    ASSERT_LE(std::fabs(pose.xtl), 3e-4);
    ASSERT_EQ(pose.har, pose.haf);
    ASSERT_EQ(pose.var, pose.vaf);
  }
}

// While the operator rests on a target nothing but the noise moves.
TEST(Operator, HasANoiseBelowATenthOfASecondOfArc) {
  const Operator person(5);
  int rests = 0;
  for (std::uint64_t now = 4000; now < kHourMs; now += 6000, ++rests) {
    const double first = person.PoseAt(now).haf;
    double least = first;
    double most = first;
    for (std::uint64_t later = now; later < now + 1900; later += kStepMs) {
      least = std::min(least, person.PoseAt(later).haf);
      most = std::max(most, person.PoseAt(later).haf);
    }
    ASSERT_GT(most, least) << "there is a noise";
    ASSERT_LT(most - least, kTenthOfASecond);
  }
  EXPECT_EQ(rests, 600);
}

TEST(Operator, MeasuresOnceOnEachTargetWhileItRests) {
  const Operator person(6);
  int presses = 0;
  for (std::uint64_t now = 0; now < kHourMs; now += kStepMs) {
    if (!person.MeasuresAt(now)) continue;
    ++presses;
    ASSERT_NEAR(person.PoseAt(now).haf, person.PoseAt(now + kStepMs).haf, kTenthOfASecond);
    ASSERT_EQ(person.DistanceAt(now), person.DistanceAt(now + 2000)) << "the target's distance";
  }
  EXPECT_EQ(presses, 600);
}

TEST(Motion, MovesTheInstrumentAndDeliversItsEvents) {
  const InstrumentAtRest instrument;
  EventSink sink;
  {
    const host::instrument::Motion motion(1);
    for (const std::uint32_t mask : sink.Masks(3)) EXPECT_EQ(mask, kAnglesChanged | kTiltChanged);
  }
  const Pose pose = host::instrument::Angles::Instance().pose();
  EXPECT_NE(pose.haf, 0);
  EXPECT_NE(pose.xtl, 0);
}

TEST(Motion, OfOneNumberPassesThroughTheOperatorsPoses) {
  const InstrumentAtRest instrument;
  std::vector<Pose> poses;
  EventSink sink([&](std::uint32_t) { poses.push_back(host::instrument::Angles::Instance().pose()); });
  {
    const host::instrument::Motion motion(11);
    sink.Masks(3);
  }
  ASSERT_GE(poses.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_TRUE(Same(poses[i], Operator(11).PoseAt(i * kStepMs))) << i;
}

}  // namespace
}  // namespace qxtest
