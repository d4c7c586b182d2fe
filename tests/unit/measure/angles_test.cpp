// ST_HAN, GT_MDT and the angle and tilt updates.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using host::instrument::Pose;

using Texts = std::vector<std::string>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Measuring : MeasuringService {
  Measuring() = default;
  explicit Measuring(const std::string& modes) { EXPECT_EQ(Answer("ST_OMD," + modes), "ok"); }

  /// Moves the instrument, delivers the event and returns what was sent.
  std::string Turn(const std::function<void(Pose&)>& change, std::uint32_t mask = kAnglesChanged) {
    Point(change);
    return Event(mask);
  }
};

// ---- ST_HAN

TEST(ST_HAN, SetsAnUnsignedAngleThroughOneCallAndASignedOneThroughAnother) {
  Measuring service;
  for (const char* angle : {"10.3", "+10.3", "-10.3"}) {
    EXPECT_EQ(service.Answer("ST_HAN,HAN=" + std::string(angle)), "ok");
  }
  EXPECT_EQ(service.Calls({15, 16}), (Texts{"15(0.18326)", "16(0.18326)", "16(-0.18326)"}));
}

TEST(ST_HAN, PassesTheSameNumberWithAndWithoutAPlus) {
  Measuring service;
  service.Answer("ST_HAN,HAN=10");
  const double plain = host::instrument::Angles::Instance().pose().haf;
  service.Answer("ST_HAN,HAN=+10");
  EXPECT_EQ(host::instrument::Angles::Instance().pose().haf, plain);
  EXPECT_EQ(plain, Degrees(10));
}

TEST(ST_HAN, PadsAShortFractionAndCutsALongOne) {
  const std::vector<std::vector<std::string>> angles = {
      {"12.3", "12.30000"},  {"12", "12.00000"},        {"12.3456789", "12.34567"}, {"12.", "12.00000"},
      {".5", "0.50000"},     {"+.5", "0.50000"},        {"-.30000", "-0.30000"},    {"0.60000", "1.00000"},
      {"0.0099", "0.01390"}, {"359.59599", "359.59599"}};
  Measuring service;
  for (const auto& angle : angles) {
    EXPECT_EQ(service.Answer("ST_HAN,HAN=" + angle[0]), "ok");
    EXPECT_EQ(service.Answer("GT_MDT,HAF"), "MDT,HAF=" + angle[1]) << angle[0];
  }
}

TEST(ST_HAN, IsRefusedWithoutItsAngleOrWithABadOneAndChangesNothing) {
  Measuring service("ANG=1");
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.ForgetCalls();
  for (const char* fields :
       {"", ",XYZ=1", ",han=10", ",HAN=1.2.3", ",HAN=12.3a", ",HAN=x", ",HAN=++1", ",HAN=1-", ",HAN= 1", ",HAN=1.2 "}) {
    EXPECT_EQ(service.Answer("ST_HAN" + std::string(fields)), "ER_PRM") << fields;
  }
  EXPECT_EQ(service.Calls({8, 15, 16, 60}), Texts{});
  EXPECT_EQ(window.seen(), std::vector<SeenMessage>{});
}

TEST(ST_HAN, ReadsAnEmptyAngleAsZero) {
  Measuring service;
  EXPECT_EQ(service.Answer("ST_HAN,HAN"), "ok");
  EXPECT_EQ(service.Calls({15, 16}), Texts{"15(0)"});
}

TEST(ST_HAN, SendsTheNewAngleAtOnceInTheModeAskedFor) {
  const Texts keys = {"1", "HAN", "11", "HAF", "21", "HAR"};
  for (std::size_t i = 0; i < keys.size(); i += 2) {
    Measuring service("ANG=" + keys[i]);
    EXPECT_EQ(service.line.Exchange("ST_HAN,HAN=10.3"),
              MessageFrame("MDT," + keys[i + 1] + "=10.30000") + std::string(kAck));
  }
}

TEST(ST_HAN, UpdatesTheAnglesInEveryMode) {
  Measuring service;
  EXPECT_EQ(service.Answer("ST_HAN,HAN=45"), "ok");
  EXPECT_EQ(service.Calls({8, 10, 15, 60}).size(), 6u) << "three when it opened, then set, read, read";
  EXPECT_EQ(service.Answer("GT_MDT,HAN,HAF,HAR"), "MDT,HAN=45.00000,HAF=45.00000,HAR=45.00000");
}

TEST(ST_HAN, PostsItsNotice) {
  Measuring service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("ST_HAN,HAN=1");
  EXPECT_EQ(window.WaitForSeen(1), (std::vector<SeenMessage>{{kNotice, 513, 0, false}}));
}

TEST(ST_HAN, DoesNotLookAtTheResultOfTheSystemLibrary) {
  Measuring service("ANG=1");
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Fail(15);
  service.Fail(16);
  EXPECT_EQ(service.Answer("ST_HAN,HAN=10"), "ok");
  EXPECT_EQ(service.Answer("ST_HAN,HAN=-10"), "ok");
  EXPECT_EQ(window.WaitForSeen(2).size(), 2u);
  EXPECT_EQ(service.Answer("GT_MDT,HAF"), "MDT,HAF=0.00000") << "what the instrument says";
}

// ---- GT_MDT

TEST(GT_MDT, AnswersInItsOwnOrderWhateverTheRequests) {
  Measuring service;
  service.GiveDistance(1);
  service.Turn([](Pose& pose) { pose = {Degrees(1), Degrees(2), Degrees(3), Degrees(4), Degrees(5), Degrees(6)}; },
               kAnglesChanged | kTiltChanged | kDistanceRefresh);
  EXPECT_EQ(service.Answer("GT_MDT,VAR,HAR,SDF,VAF,HAF,YTL,XTL,SDS,VAN,HAN"),
            "MDT,HAN=1.00000,VAN=2.00000,SDS=1.0000,XTL=5.00000,YTL=6.00000,HAF=1.00000,VAF=2.00000,SDF=1.0000,"
            "HAR=3.00000,VAR=4.00000");
  EXPECT_EQ(service.Answer("GT_MDT,VAR,HAN"), "MDT,HAN=1.00000,VAR=4.00000");
}

TEST(GT_MDT, AnswersTheWordAloneWithoutItsKeys) {
  EXPECT_EQ(Measuring().Answer("GT_MDT"), "MDT");
  EXPECT_EQ(Measuring().Answer("GT_MDT,XYZ,han=1"), "MDT");
}

TEST(GT_MDT, LooksAtThePresenceOfAKeyOnly) { EXPECT_EQ(Measuring().Answer("GT_MDT,HAN=99"), "MDT,HAN=0.00000"); }

TEST(GT_MDT, HasEmptyDistancesBeforeAnyDistance) {
  EXPECT_EQ(Measuring().Answer("GT_MDT,SDS,SDF"), "MDT,SDS=,SDF=");
  EXPECT_EQ(Measuring().Answer("GT_MDT,SDF,HAN,VAR"), "MDT,HAN=0.00000,SDF=,VAR=0.00000");
}

TEST(GT_MDT, NeverAsksTheSystemLibrary) {
  Measuring service;
  service.ForgetCalls();
  service.Point([](Pose& pose) { pose.haf = 1; });
  EXPECT_EQ(service.Answer("GT_MDT,HAN,VAN,SDS,XTL,YTL,HAF,VAF,SDF,HAR,VAR").substr(0, 15), "MDT,HAN=0.00000");
  EXPECT_EQ(service.Calls({8, 9, 10, 11, 60}), Texts{});
}

TEST(GT_MDT, ReportsWhatWasReadWhenTheServiceOpened) {
  const InstrumentAtRest instrument;
  instrument.Point([](Pose& pose) { pose = {Degrees(1), Degrees(2), Degrees(3), Degrees(4), Degrees(5), Degrees(6)}; });
  MemoryLine line;
  qxcm::CommManager manager(u"COM5", line.MakeLink());
  EXPECT_EQ(line.Take(), "");
  EXPECT_EQ(instrument.Calls({8, 10, 60}), (Texts{"10()", "60()", "8(0)"}));
  EXPECT_EQ(
      line.Exchange("GT_MDT,HAN,XTL,YTL,VAF,HAR,VAR"),
      ReplyFrame("MDT,HAN=1.00000,XTL=5.00000,YTL=6.00000,VAF=2.00000,HAR=3.00000,VAR=4.00000") + std::string(kAck));
}

TEST(GT_MDT, WritesNothingWhileSuspended) { EXPECT_EQ(Measuring().WrittenOfSuspended("GT_MDT,HAN"), ""); }

TEST(GT_MDT, NeverMixesTwoUpdates) {
  Measuring service;
  std::atomic<bool> done{false};
  std::thread instrument([&] {
    for (int turn = 0; !done; turn = (turn + 1) % 360) {
      const double angle = Degrees(turn);
      service.Point([=](Pose& pose) { pose = {angle, angle, angle, angle, 0, 0}; });
      service.manager.HandleEvent(kAnglesChanged);
    }
  });
  for (int round = 0; round < 300; ++round) {
    const std::string answer = service.Answer("GT_MDT,HAN,HAF,VAF,HAR,VAR");
    const std::string angle = answer.substr(8, answer.find(',', 8) - 8);
    EXPECT_EQ(answer, "MDT,HAN=" + angle + ",HAF=" + angle + ",VAF=" + angle + ",HAR=" + angle + ",VAR=" + angle);
  }
  done = true;
  instrument.join();
}

// ---- The tilt update

TEST(TiltUpdate, SendsOnlyWhatChanged) {
  Measuring service("TLT=1");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = Tenths(5); }, kTiltChanged), MessageFrame("MDT,XTL=0.00005"));
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.ytl = Tenths(-7); }, kTiltChanged), MessageFrame("MDT,YTL=-0.00007"));
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = pose.ytl = Tenths(1); }, kTiltChanged),
            MessageFrame("MDT,XTL=0.00001,YTL=0.00001"));
  EXPECT_EQ(service.Event(kTiltChanged), "");
}

TEST(TiltUpdate, ComparesExactly) {
  Measuring service("TLT=1");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = 1e-300; }, kTiltChanged), MessageFrame("MDT,XTL=0.00000"));
}

TEST(TiltUpdate, IsDoneForEachTiltBit) {
  Measuring service("TLT=1");
  int step = 0;
  for (const std::uint32_t bit : {0x40u, 0x80u, 0x100u, 0x200u, 0x400u}) {
    const std::string text = "MDT,XTL=0.0000" + std::to_string(++step);
    EXPECT_EQ(service.Turn([=](Pose& pose) { pose.xtl = Tenths(step); }, bit), MessageFrame(text));
  }
}

TEST(TiltUpdate, KeepsTheValuesWithoutSendingInModeZero) {
  Measuring service("ANG=11,DST=1");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = Degrees(1); }, kTiltChanged), "");
  EXPECT_EQ(service.Answer("GT_MDT,XTL"), "MDT,XTL=1.00000");
  EXPECT_EQ(service.Answer("ST_OMD,TLT=1"), "ok");
  EXPECT_EQ(service.Event(kTiltChanged), "") << "it has not changed since";
}

TEST(TiltUpdate, KeepsTheValuesWithoutSendingWhileSuspended) {
  Measuring service("TLT=1");
  service.manager.Suspend();
  service.Turn([](Pose& pose) { pose.xtl = Degrees(1); }, kTiltChanged);
  service.manager.Resume();
  EXPECT_EQ(service.Event(kTiltChanged), "");
  EXPECT_EQ(service.Answer("GT_MDT,XTL"), "MDT,XTL=1.00000");
}

TEST(TiltUpdate, KeepsTheValuesWhenTheSystemLibraryGivesNone) {
  Measuring service("TLT=1");
  service.Turn([](Pose& pose) { pose.xtl = Degrees(1); }, kTiltChanged);
  service.Fail(10);
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = Degrees(2); }, kTiltChanged), "");
  EXPECT_EQ(service.Answer("GT_MDT,XTL"), "MDT,XTL=1.00000");
}

TEST(TiltUpdate, IsNotDoneForAngleEvents) {
  Measuring service("TLT=1");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.xtl = Degrees(1); }, 0x80038), "");
  EXPECT_EQ(service.Answer("GT_MDT,XTL"), "MDT,XTL=0.00000");
}

// ---- The angle update

TEST(AngleUpdate, SendsOnlyWhatChangedInEachMode) {
  const Texts modes = {"1", "HAN", "VAN", "11", "HAF", "VAF", "21", "HAR", "VAR"};
  for (std::size_t i = 0; i < modes.size(); i += 3) {
    Measuring service("ANG=" + modes[i]);
    EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = pose.har = Degrees(1); }),
              MessageFrame("MDT," + modes[i + 1] + "=1.00000"));
    EXPECT_EQ(service.Turn([](Pose& pose) { pose.vaf = pose.var = Degrees(2); }),
              MessageFrame("MDT," + modes[i + 2] + "=2.00000"));
    EXPECT_EQ(service.Turn([](Pose& pose) { pose = {Degrees(3), Degrees(4), Degrees(3), Degrees(4), 0, 0}; }),
              MessageFrame("MDT," + modes[i + 1] + "=3.00000," + modes[i + 2] + "=4.00000"));
    EXPECT_EQ(service.Event(kAnglesChanged), "");
  }
}

TEST(AngleUpdate, IsDoneForEachAngleBit) {
  Measuring service("ANG=11");
  int step = 0;
  for (const std::uint32_t bit : {0x8u, 0x10u, 0x20u, 0x80000u}) {
    const std::string text = "MDT,HAF=0.0000" + std::to_string(++step);
    EXPECT_EQ(service.Turn([=](Pose& pose) { pose.haf = Tenths(step); }, bit), MessageFrame(text));
  }
}

TEST(AngleUpdate, SendsNoMessageForMovementBelowTheStep) {
  Measuring service("ANG=1");
  service.Turn([](Pose& pose) { pose.haf = Tenths(100.2); });
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = Tenths(103.2); }), "");
  EXPECT_EQ(service.Answer("GT_MDT,HAN,HAF"), "MDT,HAN=0.00100,HAF=0.00103");
}

TEST(AngleUpdate, SendsTheKeyWhoseRoundedValueCrossedAStep) {
  Measuring service("ANG=1");
  service.Turn([](Pose& pose) { pose.haf = pose.vaf = Tenths(103.2); });
  EXPECT_EQ(service.Turn([](Pose& pose) {
    pose.haf = Tenths(106.2);
    pose.vaf = Tenths(104.2);
  }),
            MessageFrame("MDT,HAN=0.00110"));
}

TEST(AngleUpdate, SendsUnroundedAnglesForTheSmallestMovement) {
  Measuring service("ANG=11");
  service.Turn([](Pose& pose) { pose.haf = Tenths(100.1); });
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = Tenths(100.2); }), MessageFrame("MDT,HAF=0.00100"));
}

TEST(AngleUpdate, RoundsToTheStepInForce) {
  Measuring service("ANG=1");
  service.Turn([](Pose& pose) { pose.haf = Tenths(304); });
  EXPECT_EQ(service.Answer("GT_MDT,HAN"), "MDT,HAN=0.00300");
  service.manager.measured_data().SetRoundStep(60);
  EXPECT_EQ(service.Event(kAnglesChanged), MessageFrame("MDT,HAN=0.01000"));
  service.manager.measured_data().SetRoundStep(0.1);
  EXPECT_EQ(service.Event(kAnglesChanged), MessageFrame("MDT,HAN=0.00304"));
}

TEST(AngleUpdate, InModeZeroSendsNothingButKeepsAllValues) {
  Measuring service("TLT=1,DST=1");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose = {Degrees(1), Degrees(2), Degrees(3), Degrees(4), 0, 0}; }), "");
  EXPECT_EQ(service.Answer("GT_MDT,HAN,VAN,HAF,VAF,HAR,VAR"),
            "MDT,HAN=1.00000,VAN=2.00000,HAF=1.00000,VAF=2.00000,HAR=3.00000,VAR=4.00000");
}

TEST(AngleUpdate, KeepsTheValuesOfTheOtherModesToo) {
  Measuring service("ANG=21");
  service.Turn([](Pose& pose) { pose.haf = Degrees(1); });
  EXPECT_EQ(service.Answer("ST_OMD,ANG=1"), "ok");
  EXPECT_EQ(service.Event(kAnglesChanged), "") << "it has not changed since";
}

TEST(AngleUpdate, KeepsTheValuesWithoutSendingWhileSuspended) {
  Measuring service("ANG=1");
  service.manager.Suspend();
  service.Turn([](Pose& pose) { pose.haf = Degrees(1); });
  service.manager.Resume();
  EXPECT_EQ(service.Event(kAnglesChanged), "");
  EXPECT_EQ(service.Answer("GT_MDT,HAN"), "MDT,HAN=1.00000");
}

TEST(AngleUpdate, KeepsTheValuesWhenTheSystemLibraryGivesNone) {
  Measuring service("ANG=1");
  service.Turn([](Pose& pose) { pose.haf = pose.har = Degrees(1); });
  service.Fail(8);
  service.Fail(60);
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = pose.har = Degrees(2); }), "");
  EXPECT_EQ(service.Answer("GT_MDT,HAN,HAF,HAR"), "MDT,HAN=1.00000,HAF=1.00000,HAR=1.00000");
}

TEST(AngleUpdate, IsNotDoneForTiltEvents) {
  Measuring service("ANG=11");
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = Degrees(1); }, 0x7C0), "");
}

TEST(AngleUpdate, NeverFloodsTheControllerWithAnglesThatAreNoNumbers) {
  for (const char* mode : {"1", "11", "21"}) {
    for (const double angle : {kNaN, kInfinity, -kInfinity}) {
      Measuring service("ANG=" + std::string(mode) + ",TLT=1");
      service.Turn([=](Pose& pose) { pose = {angle, angle, angle, angle, angle, angle}; }, 0x7F8);
      EXPECT_EQ(service.Event(0x7F8), "") << mode << " " << angle;
      EXPECT_EQ(service.Answer("GT_MDT,HAN,HAF,HAR,XTL"), "MDT,HAN=0.00000,XTL=0.00000,HAF=0.00000,HAR=0.00000");
    }
  }
}

TEST(AngleUpdate, RecoversFromAnglesThatAreNoNumbers) {
  Measuring service("ANG=11");
  service.Turn([](Pose& pose) { pose.haf = kNaN; });
  EXPECT_EQ(service.Turn([](Pose& pose) { pose.haf = Degrees(3); }), MessageFrame("MDT,HAF=3.00000"));
}

TEST(AngleUpdate, OfSeveralServicesHappensInEachByItsOwnMode) {
  Measuring first("ANG=1");
  MemoryLine line;
  qxcm::CommManager second(u"COMBT", line.MakeLink());
  line.Exchange("ST_OMD,ANG=11");
  EXPECT_EQ(first.Turn([](Pose& pose) { pose.haf = Degrees(1); }), MessageFrame("MDT,HAN=1.00000"));
  second.HandleEvent(kAnglesChanged);
  EXPECT_EQ(line.Take(), MessageFrame("MDT,HAF=1.00000"));
}

}  // namespace
}  // namespace qxtest
