// MR_DST.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "instrument/distance_meter.h"
#include "unit/measure/distance_service.h"

namespace qxtest {
namespace {

using host::instrument::Pose;
using Measuring = DistanceService;

using Texts = std::vector<std::string>;

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

}  // namespace
}  // namespace qxtest
