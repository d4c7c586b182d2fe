// The life of a simulated distance measurement.
#include "instrument/distance_meter.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "unit/instrument/event_sink.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using host::instrument::Pose;
using Masks = std::vector<std::uint32_t>;

class DistanceMeter : public testing::Test {
 protected:
  InstrumentAtRest instrument_;
  EventSink sink_;
  host::instrument::DistanceMeter& meter_ = host::instrument::DistanceMeter::Instance();
};

TEST_F(DistanceMeter, IsAtRestInTheBeginning) {
  meter_.Reset();
  const auto state = meter_.state();
  EXPECT_FALSE(state.running);
  EXPECT_FALSE(state.valid);
  EXPECT_EQ(state.slope, 10.0);
  EXPECT_EQ(state.takes_ms, 300u);
}

TEST_F(DistanceMeter, GivesADistanceAfterItsTimeAndAnnouncesIt) {
  meter_.SetTakesMs(30);
  meter_.SetSlope(12.5);
  const auto start = std::chrono::steady_clock::now();
  meter_.Start(2, 1);
  EXPECT_EQ(meter_.state().mode, 2u);
  EXPECT_EQ(meter_.state().target, 1u);
  EXPECT_EQ(sink_.Masks(1).front(), kDistanceReady);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
  EXPECT_TRUE(meter_.state().valid);
  EXPECT_EQ(meter_.last().slope, 12.5);
}

TEST_F(DistanceMeter, GivesDistancesAgainAndAgainUntilItIsStopped) {
  meter_.SetTakesMs(0);
  meter_.Start(1, 0);
  const Masks masks = sink_.Masks(5);
  EXPECT_EQ(Masks(masks.begin(), masks.begin() + 5), Masks(5, kDistanceReady));
  meter_.Stop();
  EXPECT_TRUE(WaitUntil([&] { return sink_.seen().back().wparam == kMeasurementEnded; }));
  EXPECT_FALSE(meter_.state().running);
  EXPECT_TRUE(meter_.state().valid) << "the last distance stays";
}

TEST_F(DistanceMeter, AnnouncesItsEndOnceForEachMeasurement) {
  meter_.Stop();  // none runs
  meter_.Start(1, 0);
  meter_.Stop();
  EXPECT_EQ(sink_.Masks(1), Masks{kMeasurementEnded});
  meter_.Stop();
  meter_.Start(1, 0);
  meter_.Stop();
  EXPECT_EQ(sink_.Masks(2), (Masks{kMeasurementEnded, kMeasurementEnded}));
}

TEST_F(DistanceMeter, MeasuresAgainAfterARest) {
  meter_.SetTakesMs(0);
  meter_.Start(1, 0);
  sink_.Masks(1);
  meter_.Rest();
  EXPECT_FALSE(meter_.state().running);
  meter_.Rest();  // nothing to end
  const std::size_t before = sink_.seen().size();
  meter_.Start(2, 0);
  EXPECT_EQ(sink_.Masks(before + 1)[before], kDistanceReady) << "and no end of the measurement before the rest";
}

TEST_F(DistanceMeter, HasNoValidDistanceFromAStartUntilItIsReady) {
  meter_.SetValid(true);
  meter_.Start(1, 0);
  EXPECT_FALSE(meter_.state().valid);
  EXPECT_TRUE(meter_.state().running);
}

TEST_F(DistanceMeter, StartedAnewTakesItsTimeAnew) {
  meter_.Start(1, 0);
  meter_.SetTakesMs(0);
  meter_.Start(3, 1);
  EXPECT_EQ(sink_.Masks(1).front(), kDistanceReady);
  EXPECT_EQ(meter_.state().mode, 3u);
}

TEST_F(DistanceMeter, IsNotStoppedForAnEarlierStart) {
  const auto first = meter_.Start(1, 0);
  const auto second = meter_.Start(1, 0);
  meter_.StopUnlessStartedAnew(first);
  EXPECT_TRUE(meter_.state().running);
  meter_.StopUnlessStartedAnew(second);
  EXPECT_FALSE(meter_.state().running);
}

TEST_F(DistanceMeter, MeasuresTheAnglesOfTheMoment) {
  instrument_.Point([](Pose& pose) { pose.haf = 1, pose.vaf = 2, pose.har = 3; });
  meter_.SetValid(true);
  instrument_.Point([](Pose& pose) { pose.haf = 5; });
  EXPECT_EQ(meter_.last().horizontal, 1);
  EXPECT_EQ(meter_.last().vertical, 2);
}

TEST_F(DistanceMeter, AnnouncesADistanceThatBecomesValidWhileItMeasures) {
  meter_.SetValid(true);  // nothing is measured: no event
  meter_.Start(1, 0);
  meter_.SetValid(false);
  meter_.SetValid(true);
  meter_.SetValid(true);  // no news
  meter_.Stop();
  EXPECT_EQ(sink_.Masks(2), (Masks{kDistanceReady, kMeasurementEnded}));
}

TEST_F(DistanceMeter, ResetEndsAMeasurementAndSaysSo) {
  meter_.Start(3, 1);
  meter_.SetSlope(99);
  meter_.Reset();
  EXPECT_EQ(sink_.Masks(1), Masks{kMeasurementEnded});
  EXPECT_FALSE(meter_.state().running);
  EXPECT_EQ(meter_.state().slope, 10.0);
  EXPECT_EQ(meter_.state().mode, 1u);
}

TEST_F(DistanceMeter, MeasuresWithoutAWindowForItsEvents) {
  host::instrument::ResetEventWindow();
  meter_.SetTakesMs(0);
  meter_.Start(1, 0);
  EXPECT_TRUE(WaitUntil([&] { return meter_.state().valid; }));
}

}  // namespace
}  // namespace qxtest
