// MR_DST and the distance report.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "QXCommMgr.h"
#include "instrument/distance_meter.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using host::instrument::Pose;

using Texts = std::vector<std::string>;

struct Measuring : MeasuringService {
  /// The last request as the application reads it: "mode target single offset".
  std::string Request() {
    QCM_MSR_PARAMS request = {};
    if (!manager.records().Fetch(&request)) return "none";
    return std::to_string(request.mode) + " " + std::to_string(request.target) + " " +
           std::to_string(request.single_shot) + " " + std::to_string(request.offset);
  }
  Texts StartsAndStops() const { return Calls({5, 6}); }
  /// The message about a distance in this output mode.
  std::string Report(const std::string& mode, double metres) {
    EXPECT_EQ(Answer("ST_OMD,DST=" + mode), "ok");
    GiveDistance(metres);
    return Event(kDistanceReady);
  }
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// ---- The request

TEST(MR_DST, WithoutFieldsStartsModeOneTargetZeroRepeatedWithoutOffset) {
  Measuring service;
  EXPECT_EQ(service.Answer("MR_DST"), "ok");
  EXPECT_EQ(service.Request(), "1 0 0 0.000000");
  EXPECT_EQ(service.StartsAndStops(), Texts{"5(1, 0)"});
}

TEST(MR_DST, TakesItsModeFromTheFirstCharacterOfMOD) {
  Measuring service;
  for (const char* mode : {"A", "N", "F", "Axx", "N0", "FAN"}) service.Answer("MR_DST,MOD=" + std::string(mode));
  EXPECT_EQ(service.StartsAndStops(), (Texts{"5(1, 0)", "5(2, 0)", "5(3, 0)", "5(1, 0)", "5(2, 0)", "5(3, 0)"}));
}

TEST(MR_DST, TakesItsTargetFromTheFirstCharacterOfTGT) {
  Measuring service;
  for (const char* target : {"P", "N", "PN", "NP"}) service.Answer("MR_DST,TGT=" + std::string(target));
  EXPECT_EQ(service.StartsAndStops(), (Texts{"5(1, 0)", "5(1, 1)", "5(1, 0)", "5(1, 1)"}));
}

TEST(MR_DST, TakesSingleShotFromTheFirstCharacterOfREP) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  EXPECT_EQ(service.Request(), "1 0 1 0.000000");
  service.Answer("MR_DST,REP=1");
  EXPECT_EQ(service.Request(), "1 0 0 0.000000");
  service.Answer("MR_DST,REP=01");
  EXPECT_EQ(service.Request(), "1 0 1 0.000000");
}

TEST(MR_DST, TakesAllFieldsTogetherInAnyOrder) {
  Measuring service;
  EXPECT_EQ(service.Answer("MR_DST,REP=0,OFS=-35,TGT=N,MOD=F"), "ok");
  EXPECT_EQ(service.Request(), "3 1 1 -0.035000");
  EXPECT_EQ(service.StartsAndStops(), Texts{"5(3, 1)"});
}

TEST(MR_DST, RefusesEveryOtherFirstCharacter) {
  Measuring service;
  for (const char* fields : {"MOD=a", "MOD=f", "MOD=1", "MOD= A", "MOD", "TGT=p", "TGT=n", "TGT=0", "TGT=X", "TGT",
                             "REP=2", "REP=x", "REP= 0", "REP=-1", "REP"}) {
    EXPECT_EQ(service.Answer("MR_DST," + std::string(fields)), "ER_PRM") << fields;
  }
  EXPECT_EQ(service.Request(), "none");
  EXPECT_EQ(service.StartsAndStops(), Texts{});
}

TEST(MR_DST, ReadsTheNumberThatOFSBeginsWith) {
  const std::vector<std::vector<std::string>> offsets = {{"12.5", "0.012500"}, {"-3mm", "-0.003000"},
                                                         {"+1e3", "1.000000"}, {" 7", "0.007000"},
                                                         {".5", "0.000500"},   {"1e", "0.001000"}};
  Measuring service;
  for (const auto& offset : offsets) {
    EXPECT_EQ(service.Answer("MR_DST,OFS=" + offset[0]), "ok");
    EXPECT_EQ(service.Request(), "1 0 0 " + offset[1]) << offset[0];
  }
}

TEST(MR_DST, NeverRefusesOFSAndReadsWhatIsNoNumberAsZero) {
  Measuring service;
  for (const char* offset : {"OFS", "OFS=x", "OFS=mm5", "OFS=-", "OFS=inf", "OFS=nan"}) {
    EXPECT_EQ(service.Answer("MR_DST," + std::string(offset)), "ok");
    EXPECT_EQ(service.Request(), "1 0 0 0.000000") << offset;
  }
}

TEST(MR_DST, AnswersWithItsAcknowledgementOnly) {
  Measuring service;
  EXPECT_EQ(service.line.Exchange("MR_DST"), kAck);
  EXPECT_EQ(service.line.Take(), "") << "it never waits for the distance";
}

TEST(MR_DST, ChangesNothingWhenAFieldIsBad) {
  Measuring service;
  service.Answer("MR_DST,MOD=N,OFS=100,REP=0");
  service.ForgetCalls();
  for (const char* bad : {"MOD=x,OFS=9,REP=1", "TGT=x,OFS=9,REP=1", "MOD=F,TGT=N,OFS=9,REP=x"}) {
    EXPECT_EQ(service.Answer("MR_DST," + std::string(bad)), "ER_PRM");
  }
  EXPECT_EQ(service.Request(), "2 0 1 0.100000");
  EXPECT_EQ(service.Report("11", 10), MessageFrame("MDT,SDF=10.1000")) << "the old offset";
  EXPECT_EQ(service.StartsAndStops(), Texts{"6()"}) << "still a single shot";
}

// ---- Stopping

TEST(MR_DST, StopsBeforeItLooksAtAnyOtherField) {
  Measuring service;
  EXPECT_EQ(service.Answer("MR_DST,MOD=0,TGT=X"), "ok");
  EXPECT_EQ(service.Answer("MR_DST,REP=9,MOD=0"), "ok");
  EXPECT_EQ(service.Answer("MR_DST,MOD=0F"), "ok");
  EXPECT_EQ(service.StartsAndStops(), (Texts{"6()", "6()", "6()"}));
  EXPECT_EQ(service.Request(), "none");
}

TEST(MR_DST, StopKeepsOffsetSingleShotAndRequest) {
  Measuring service;
  service.Answer("MR_DST,OFS=100,REP=0");
  service.Answer("MR_DST,MOD=0,OFS=7,REP=1");
  service.ForgetCalls();
  EXPECT_EQ(service.Request(), "1 0 1 0.100000");
  EXPECT_EQ(service.Report("11", 10), MessageFrame("MDT,SDF=10.1000"));
  EXPECT_EQ(service.StartsAndStops(), Texts{"6()"});
}

TEST(MR_DST, StopTellsNoWindow) {
  Measuring service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("MR_DST,MOD=0");
  service.Answer("MR_DST,MOD=x");
  EXPECT_EQ(window.seen(), std::vector<SeenMessage>{});
}

TEST(MR_DST, DoesNotLookAtTheResultsOfStartAndStop) {
  Measuring service;
  service.Fail(5);
  service.Fail(6);
  EXPECT_EQ(service.Answer("MR_DST,REP=0"), "ok");
  EXPECT_EQ(service.Answer("MR_DST,MOD=0"), "ok");
}

// ---- The notice

TEST(MR_DST, SendsItsNoticeAndDoesNotPostIt) {
  Measuring service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("MR_DST");
  EXPECT_EQ(window.seen(), (std::vector<SeenMessage>{{kNotice, 256, 0, true}}));
}

TEST(MR_DST, HasTheRequestStoredAndNothingStartedWhenTheWindowHandlesTheNotice) {
  Measuring service;
  std::string request;
  Texts calls;
  TestWindow window([&](UINT, WPARAM, LPARAM) {
    request = service.Request();
    calls = service.StartsAndStops();
    return 0;
  });
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("MR_DST,MOD=N,TGT=N,OFS=5,REP=0");
  EXPECT_EQ(request, "2 1 1 0.005000");
  EXPECT_EQ(calls, Texts{});
  EXPECT_EQ(service.StartsAndStops(), Texts{"5(2, 1)"});
}

TEST(MR_DST, HoldsNoLockWhileTheWindowHandlesTheNotice) {
  Measuring service;
  bool handled = false;
  TestWindow window([&](UINT, WPARAM, LPARAM) {
    service.manager.HandleEvent(kAnglesChanged | kTiltChanged | kDistanceReady);  // takes the manager lock
    handled = true;
    return 0;
  });
  service.manager.notify_list().Register(window.handle(), kNotice);
  EXPECT_EQ(service.Answer("MR_DST"), "ok");
  EXPECT_TRUE(handled);
}

// ---- Offset

TEST(MR_DST, AddsTheOffsetOfTheRequestInMetres) {
  Measuring service;
  service.Answer("MR_DST,OFS=12.5");
  EXPECT_EQ(service.Report("1", 10.00004), MessageFrame("MDT,SDS=10.0125"));
}

TEST(MR_DST, KeepsItsOffsetForEveryLaterDistance) {
  Measuring service;
  service.Answer("MR_DST,OFS=1000,REP=0");
  EXPECT_EQ(service.Report("11", 10), MessageFrame("MDT,SDF=11.0000"));
  EXPECT_EQ(service.Event(kMeasurementEnded), "");
  EXPECT_EQ(service.Report("11", 10), MessageFrame("MDT,SDF=11.0000")) << "added once to each distance";
  EXPECT_EQ(service.Report("11", 20), MessageFrame("MDT,SDF=21.0000"));
}

TEST(MR_DST, WithoutOFSTakesTheOffsetBack) {
  Measuring service;
  service.Answer("MR_DST,OFS=1000");
  service.Answer("MR_DST");
  EXPECT_EQ(service.Report("11", 10), MessageFrame("MDT,SDF=10.0000"));
}

TEST(MR_DST, AddsTheOffsetOnceWhenTheInstrumentGivesNoNewDistance) {
  Measuring service;
  service.Answer("MR_DST,OFS=1000");
  service.Report("11", 10);
  service.Fail(9);
  EXPECT_EQ(service.Event(kDistanceReady), MessageFrame("MDT,SDF=11.0000"));
}

TEST(MR_DST, TakesAnOffsetThatNoDoubleHoldsWithoutHarm) {
  Measuring service;
  EXPECT_EQ(service.Answer("MR_DST,OFS=1e999"), "ok");
  EXPECT_EQ(service.Report("1", 10), MessageFrame("MDT,SDS="));
  EXPECT_EQ(service.Answer("GT_MDT,SDS,SDF"), "MDT,SDS=,SDF=");
}

// ---- Single shot

TEST(EventMask, DistanceReadyStopsASingleShotAfterItsReport) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  service.ForgetCalls();
  service.GiveDistance(10);
  service.Event(kDistanceReady);
  EXPECT_EQ(service.Calls({5, 6, 9, 11}), (Texts{"11()", "9()", "6()"}));
}

TEST(EventMask, DistanceReadyKeepsARepeatedMeasurementRunning) {
  Measuring service;
  for (const char* command : {"MR_DST,REP=1", "MR_DST"}) {
    service.Answer(command);
    service.ForgetCalls();
    service.GiveDistance(10);
    service.Event(kDistanceReady);
    EXPECT_EQ(service.StartsAndStops(), Texts{}) << command;
  }
}

TEST(EventMask, DistanceReadyStopsASingleShotWithoutAValidDistanceToo) {
  Measuring service;
  service.Answer("ST_OMD,DST=1");
  service.Answer("MR_DST,REP=0");
  EXPECT_EQ(service.Event(kDistanceReady), "");
  EXPECT_EQ(service.StartsAndStops(), (Texts{"5(1, 0)", "6()"}));
}

TEST(EventMask, EveryDistanceReadyStopsUntilTheMeasurementHasEnded) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  service.ForgetCalls();
  service.Event(kDistanceReady);
  service.Event(kDistanceReady);
  service.Event(kMeasurementEnded);
  service.Event(kDistanceReady);
  EXPECT_EQ(service.StartsAndStops(), (Texts{"6()", "6()"}));
}

TEST(EventMask, StatusBitOneAloneLeavesSingleShotAsItIs) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  service.ForgetCalls();
  service.Event(kStatusChanged);
  service.Event(kDistanceReady);
  EXPECT_EQ(service.StartsAndStops(), Texts{"6()"});
}

TEST(EventMask, EndOfMeasurementCountsBeforeADistanceReadyOfTheSameMask) {
  Measuring service;
  service.Answer("ST_OMD,DST=11");
  service.Answer("MR_DST,REP=0");
  service.ForgetCalls();
  service.GiveDistance(10);
  EXPECT_EQ(service.Event(kDistanceReady | kMeasurementEnded), MessageFrame("MDT,SDF=10.0000"));
  EXPECT_EQ(service.StartsAndStops(), Texts{});
}

TEST(EventMask, ANewRequestReplacesSingleShot) {
  Measuring service;
  service.Answer("MR_DST,REP=0");
  service.Answer("MR_DST,REP=1");
  service.ForgetCalls();
  service.Event(kDistanceReady);
  EXPECT_EQ(service.StartsAndStops(), Texts{});
}

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
