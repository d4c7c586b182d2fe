// Distance events and the distance report.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "instrument/distance_meter.h"
#include "unit/measure/distance_service.h"

namespace qxtest {
namespace {

using host::instrument::Pose;
using Measuring = DistanceService;

using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- The mask

TEST(EventMask, ReadsWhatEachBitNames) {
  Measuring service;
  const Texts tilt = {"10()"};
  const Texts angles = {"60()", "8(0)"};
  const Texts distance = {"11()", "9()"};
  const Texts status = {"11()"};
  for (int bit = 0; bit < 32; ++bit) {
    Texts expected;
    if (bit >= 6 && bit <= 10) expected = tilt;
    if ((bit >= 3 && bit <= 5) || bit == 19) expected = angles;
    if (bit == 18 || bit == 0) expected = distance;
    if (bit == 1 || bit == 2) expected = status;
    service.ForgetCalls();
    service.Event(std::uint32_t{1} << bit);
    EXPECT_EQ(service.Calls({5, 6, 8, 9, 10, 11, 60}), expected) << "bit " << bit;
  }
}

TEST(EventMask, GoesThroughItsBitsInOneOrder) {
  Measuring service;
  service.ForgetCalls();
  service.Event(0xFFFFFFFF);
  EXPECT_EQ(service.Calls({5, 6, 8, 9, 10, 11, 60}),
            (Texts{"10()", "60()", "8(0)", "11()", "9()", "11()", "11()", "9()"}));
}

TEST(EventMask, OfZeroDoesNothing) {
  Measuring service;
  service.ForgetCalls();
  EXPECT_EQ(service.Event(0), "");
  EXPECT_EQ(service.Calls({5, 6, 8, 9, 10, 11, 60}), Texts{});
}

TEST(EventMask, SendsItsMessagesInTheOrderOfTheBits) {
  Measuring service;
  service.Answer("ST_OMD,ANG=11,TLT=1,DST=11");
  service.Point([](Pose& pose) { pose.haf = pose.xtl = Degrees(1); });
  service.GiveDistance(10);
  EXPECT_EQ(service.Event(kDistanceReady | kAnglesChanged | kTiltChanged),
            MessageFrame("MDT,XTL=1.00000") + MessageFrame("MDT,HAF=1.00000") + MessageFrame("MDT,SDF=10.0000"));
}

TEST(EventMask, IsNotLookedAtOnceTheServiceIsClosing) {
  Measuring service;
  service.manager.MarkClosing();
  service.ForgetCalls();
  service.Event(0xFFFFFFFF);
  EXPECT_EQ(service.Calls({8, 9, 10, 11, 60}), Texts{});
}

// ---- The distance report

TEST(DistanceReport, OfEachOutputModeHasItsOwnFields) {
  Measuring service;
  service.Point([](Pose& pose) { pose = {Degrees(10) + Tenths(4), Degrees(90) - Tenths(4), 0, 0, 0, 0}; });
  EXPECT_EQ(service.Report("0", 10.00006), "");
  EXPECT_EQ(service.Report("1", 10.00006), MessageFrame("MDT,SDS=10.0001"));
  EXPECT_EQ(service.Report("2", 10.00006), MessageFrame("MDT,SDS=10.0001,HAN=10.00000,VAN=90.00000"));
  EXPECT_EQ(service.Report("11", 10.00006), MessageFrame("MDT,SDF=10.0001"));
  EXPECT_EQ(service.Report("12", 10.00006), MessageFrame("MDT,SDF=10.0001,HAF=10.00004,VAF=89.59596"));
}

TEST(DistanceReport, OfModeZeroStillUpdatesTheKeptValues) {
  Measuring service;
  EXPECT_EQ(service.Report("0", 12.34567), "");
  EXPECT_EQ(service.Answer("GT_MDT,SDS,SDF"), "MDT,SDS=12.3457,SDF=12.3457");
}

TEST(DistanceReport, RoundsTheFractionToATenthOfAMillimetre) {
  Measuring service;
  EXPECT_EQ(service.Report("1", 0.00004), MessageFrame("MDT,SDS=0.0000"));
  EXPECT_EQ(service.Report("1", 0.00006), MessageFrame("MDT,SDS=0.0001"));
  EXPECT_EQ(service.Report("1", 9.99996), MessageFrame("MDT,SDS=10.0000"));
  EXPECT_EQ(service.Report("1", 123.0), MessageFrame("MDT,SDS=123.0000"));
}

// Half a unit is added whatever the sign: -1.00016 goes up to -1.0001, as the fraction -1.6 becomes -1.1 and is cut.
TEST(DistanceReport, RoundsANegativeDistanceTowardZero) {
  Measuring service;
  EXPECT_EQ(service.Report("1", -1.00016), MessageFrame("MDT,SDS=-1.0001"));
  EXPECT_EQ(service.Report("11", -1.00016), MessageFrame("MDT,SDF=-1.0002")) << "the raw form is not rounded so";
  EXPECT_EQ(service.Report("1", -0.5), MessageFrame("MDT,SDS=-0.4999"));
}

TEST(DistanceReport, RoundsToTheStepOfTheApplication) {
  Measuring service;
  service.manager.measured_data().SetRoundStep(60);
  service.Point([](Pose& pose) { pose = {Tenths(301), Tenths(299), 0, 0, 0, 0}; });
  EXPECT_EQ(service.Report("2", 1), MessageFrame("MDT,SDS=1.0000,HAN=0.01000,VAN=0.00000"));
  EXPECT_EQ(service.Report("12", 1), MessageFrame("MDT,SDF=1.0000,HAF=0.00301,VAF=0.00299"));
}

TEST(DistanceReport, HasTheAnglesOfTheMeasurementNotTheCurrentOnes) {
  Measuring service;
  service.Answer("ST_OMD,DST=12");
  service.Point([](Pose& pose) { pose.haf = Degrees(10); });
  service.GiveDistance(5);
  service.Point([](Pose& pose) { pose.haf = Degrees(20); });
  EXPECT_EQ(service.Event(kDistanceReady), MessageFrame("MDT,SDF=5.0000,HAF=10.00000,VAF=0.00000"));
}

TEST(DistanceReport, WithoutAValidDistanceSendsNothing) {
  Measuring service;
  for (const char* mode : {"1", "2", "11", "12"}) {
    service.Answer("ST_OMD,DST=" + std::string(mode));
    EXPECT_EQ(service.Event(kDistanceReady), "") << mode;
  }
  EXPECT_EQ(service.Answer("GT_MDT,SDS,SDF"), "MDT,SDS=,SDF=");
}

TEST(DistanceReport, WithoutAValidDistanceKeepsTheDistanceAsMeasuredWithoutOffset) {
  Measuring service;
  service.Answer("MR_DST,OFS=1000");
  service.GiveDistance(10.00016);
  host::instrument::DistanceMeter::Instance().SetValid(false);
  service.Event(kDistanceReady);
  host::instrument::DistanceMeter::Instance().SetValid(true);
  service.Event(kStatusChanged);  // the status alone: the distance stays as it was read
  EXPECT_EQ(service.Answer("GT_MDT,SDS,SDF"), "MDT,SDS=10.0002,SDF=10.0002");
}

TEST(DistanceReport, IsDoneWithoutSendingForTheRefreshBit) {
  Measuring service;
  service.Answer("ST_OMD,DST=1");
  service.Answer("MR_DST,REP=0,OFS=1000");
  service.ForgetCalls();
  service.GiveDistance(10);
  EXPECT_EQ(service.Event(kDistanceRefresh), "");
  EXPECT_EQ(service.Answer("GT_MDT,SDS"), "MDT,SDS=11.0000");
  EXPECT_EQ(service.StartsAndStops(), Texts{}) << "and stops no single shot";
}

TEST(DistanceReport, IsDoneWithoutSendingForTheStatusBits) {
  Measuring service;
  service.Answer("ST_OMD,DST=1");
  service.Report("1", 10);
  service.GiveDistance(20);
  EXPECT_EQ(service.Event(kStatusChanged | kMeasurementEnded), "");
  EXPECT_EQ(service.Answer("GT_MDT,SDS"), "MDT,SDS=10.0000");
}

TEST(DistanceReport, StatusBitsTellWhetherTheDistanceIsValid) {
  for (const std::uint32_t bit : {kStatusChanged, kMeasurementEnded}) {
    Measuring service;
    service.Report("1", 10);
    host::instrument::DistanceMeter::Instance().SetValid(false);
    EXPECT_EQ(service.Answer("GT_MDT,SDS"), "MDT,SDS=10.0000") << "not before the event";
    service.Event(bit);
    EXPECT_EQ(service.Answer("GT_MDT,SDS"), "MDT,SDS=");
  }
}

TEST(DistanceReport, SendsNothingWhileSuspendedButKeepsTheValues) {
  Measuring service;
  service.Answer("ST_OMD,DST=1");
  service.manager.Suspend();
  service.GiveDistance(33);
  EXPECT_EQ(service.Event(kDistanceReady), "");
  service.manager.Resume();
  EXPECT_EQ(service.line.Take(), "");
  EXPECT_EQ(service.Answer("GT_MDT,SDF"), "MDT,SDF=33.0000");
}

TEST(DistanceReport, StopsASingleShotWhileSuspended) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  service.manager.Suspend();
  service.ForgetCalls();
  service.Event(kDistanceReady);
  EXPECT_EQ(service.StartsAndStops(), Texts{"6()"});
}

TEST(DistanceReport, IsDoneOnceWhenTheServiceOpensAndSendsNothing) {
  const InstrumentAtRest instrument;
  instrument.GiveDistance(7.5);
  MemoryLine line;
  qxcm::CommManager manager(u"COM5", line.MakeLink());
  EXPECT_EQ(instrument.Calls({9, 11}), (Texts{"11()", "9()"}));
  EXPECT_EQ(line.Exchange("GT_MDT,SDF"), ReplyFrame("MDT,SDF=7.5000") + std::string(kAck));
}

TEST(DistanceReport, SwallowsNoAngleMessage) {
  Measuring service;
  service.Answer("ST_OMD,ANG=1,DST=2");
  service.Point([](Pose& pose) { pose.haf = Degrees(5); });
  service.GiveDistance(1);
  EXPECT_EQ(service.Event(kDistanceReady), MessageFrame("MDT,SDS=1.0000,HAN=5.00000,VAN=0.00000"));
  EXPECT_EQ(service.Event(kAnglesChanged), MessageFrame("MDT,HAN=5.00000"));
}

TEST(DistanceReport, ChangesNeitherAnglesNorTiltsOfTheSnapshot) {
  Measuring service;
  service.Point([](Pose& pose) { pose = {1, 1, 1, 1, 1, 1}; });
  service.Report("12", 1);
  EXPECT_EQ(service.Answer("GT_MDT,HAN,VAN,XTL,HAF,HAR"),
            "MDT,HAN=0.00000,VAN=0.00000,XTL=0.00000,HAF=0.00000,"
            "HAR=0.00000");
}

TEST(DistanceReport, KeepsTheLastValuesWhenTheSystemLibraryGivesNone) {
  Measuring service;
  service.Report("1", 10);
  service.GiveDistance(20);
  service.Fail(9);
  service.Fail(11);
  EXPECT_EQ(service.Event(kDistanceReady), MessageFrame("MDT,SDS=10.0000"));
}

TEST(DistanceReport, OfNoFiniteDistanceHasNoText) {
  Measuring service;
  for (const double distance : {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
    for (const char* mode : {"1", "11"}) {
      const std::string key = mode == std::string("1") ? "SDS" : "SDF";
      EXPECT_EQ(service.Report(mode, distance), MessageFrame("MDT," + key + "=")) << distance;
    }
  }
}

TEST(DistanceReport, CutsATextLongerThanItsBuffer) {
  Measuring service;
  const std::string message = service.Report("11", 1e100);
  const std::string text = message.substr(2, message.rfind('>') - 2);
  EXPECT_EQ(text.substr(0, 14), "MDT,SDF=100000");
  EXPECT_EQ(text.size(), std::string("MDT,SDF=").size() + 63);
}

TEST(DistanceReport, IsSentForEachDistanceEvenWhenItIsTheSame) {
  Measuring service;
  service.Report("1", 10);
  EXPECT_EQ(service.Event(kDistanceReady), MessageFrame("MDT,SDS=10.0000"));
}

}  // namespace
}  // namespace qxtest
