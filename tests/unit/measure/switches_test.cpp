// ST_HSW and GT_HSW.
#include "instrument/switches.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using host::instrument::Switches;

using Texts = std::vector<std::string>;

void SetAll(std::vector<std::int32_t> values) {
  for (std::size_t i = 0; i < values.size(); ++i) Switches::Instance().Set(static_cast<std::int32_t>(i), values[i]);
}

// ---- ST_HSW

TEST(ST_HSW, SetsEachSwitchByItsNumber) {
  const std::vector<Texts> numbers = {{"LGD", "1"}, {"RTL", "0"}, {"LPT", "2"}, {"LPL", "3"}};
  for (const Texts& number : numbers) {
    MeasuringService service;
    EXPECT_EQ(service.Answer("ST_HSW," + number[0] + "=1"), "ok");
    EXPECT_EQ(service.Calls({43, 44}), Texts{"43(" + number[1] + ", 1)"});
  }
}

TEST(ST_HSW, GoesThroughItsOwnOrderWhateverTheRequests) {
  MeasuringService service;
  EXPECT_EQ(service.Answer("ST_HSW,LPL=4,LPT=3,RTL=2,LGD=1"), "ok");
  EXPECT_EQ(service.Calls({43}), (Texts{"43(1, 1)", "43(0, 2)", "43(2, 3)", "43(3, 4)"}));
  service.ForgetCalls();
  EXPECT_EQ(service.Answer("ST_HSW,LPT=1,LGD=0"), "ok");
  EXPECT_EQ(service.Calls({43}), (Texts{"43(1, 0)", "43(2, 1)"}));
}

TEST(ST_HSW, PassesEveryNumberAsItIs) {
  const std::vector<Texts> values = {{"=2", "2"},
                                     {"=-1", "-1"},
                                     {"=007x", "7"},
                                     {"=x", "0"},
                                     {"", "0"},
                                     {"= +5", "5"},
                                     {"=1.9", "1"},
                                     {"=2147483648", "2147483647"},
                                     {"=-99999999999", "-2147483648"}};
  MeasuringService service;
  for (const Texts& value : values) {
    service.ForgetCalls();
    EXPECT_EQ(service.Answer("ST_HSW,LGD" + value[0]), "ok");
    EXPECT_EQ(service.Calls({43}), Texts{"43(1, " + value[1] + ")"});
  }
}

TEST(ST_HSW, StopsAtTheFirstRefusalAndKeepsTheSwitchesBeforeIt) {
  MeasuringService service;
  service.Fail(43, -1, 2);
  EXPECT_EQ(service.Answer("ST_HSW,LGD=1,RTL=1,LPT=1,LPL=1"), "ER_PRM");
  EXPECT_EQ(service.Calls({43}), (Texts{"43(1, 1)", "43(0, 1)"}));
  host::ClearFaults();
  EXPECT_EQ(service.Answer("GT_HSW,LGD,RTL,LPT,LPL"), "HSW,LGD=1,RTL=0,LPT=0,LPL=0");
}

TEST(ST_HSW, TakesEveryResultButZeroForARefusal) {
  for (const std::int64_t result : {1, -1, -12, 2147483647}) {
    MeasuringService service;
    service.Fail(43, result);
    EXPECT_EQ(service.Answer("ST_HSW,LPL=1"), "ER_PRM") << result;
  }
}

TEST(ST_HSW, DoesNothingWithoutItsKeys) {
  MeasuringService service;
  for (const char* command : {"ST_HSW", "ST_HSW,DBL=1", "ST_HSW,lgd=1", "ST_HSW,XYZ"}) {
    EXPECT_EQ(service.Answer(command), "ok");
  }
  EXPECT_EQ(service.Calls({43, 44}), Texts{});
}

TEST(ST_HSW, TellsNoWindow) {
  MeasuringService service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("ST_HSW,LGD=1");
  service.Answer("ST_HAN,HAN=1");
  EXPECT_EQ(window.WaitForSeen(1).front().wparam, 513u);
}

TEST(ST_HSW, TakesNoManagerLock) {
  MeasuringService service;
  service.Locked([&] {
    service.line.Send(CommandFrame("ST_HSW,LPT=9"));
    EXPECT_TRUE(WaitUntil([] {
      std::int32_t value = 0;
      return Switches::Instance().Get(2, &value) && value == 9;
    }));
  });
}

// ---- GT_HSW

TEST(GT_HSW, AnswersInItsOwnOrderWhateverTheRequests) {
  MeasuringService service;
  SetAll({10, 11, 12, 13});
  EXPECT_EQ(service.Answer("GT_HSW,DBL,LPL,LPT,RTL,LGD"), "HSW,LGD=11,RTL=10,LPT=12,LPL=13,DBL=0");
  EXPECT_EQ(service.Answer("GT_HSW,LPL,LGD"), "HSW,LGD=11,LPL=13");
}

TEST(GT_HSW, AsksTheSystemLibraryForWhatIsRequestedOnly) {
  MeasuringService service;
  service.Answer("GT_HSW,LPT,RTL");
  EXPECT_EQ(service.Calls({43, 44}), (Texts{"44(0)", "44(2)"}));
}

TEST(GT_HSW, AnswersWhatTheLibraryHasAtThatMoment) {
  MeasuringService service;
  service.Answer("ST_HSW,LGD=1");
  SetAll({0, -5});
  EXPECT_EQ(service.Answer("GT_HSW,LGD"), "HSW,LGD=-5");
}

TEST(GT_HSW, AlwaysAnswersZeroForDBL) {
  MeasuringService service;
  SetAll({1, 1, 1, 1});
  EXPECT_EQ(service.Answer("GT_HSW,DBL"), "HSW,DBL=0");
  EXPECT_EQ(service.Calls({44}), Texts{});
}

TEST(GT_HSW, AnswersTheWordAloneWithoutItsKeys) {
  EXPECT_EQ(MeasuringService().Answer("GT_HSW"), "HSW");
  EXPECT_EQ(MeasuringService().Answer("GT_HSW,lgd,XYZ"), "HSW");
}

TEST(GT_HSW, LooksAtThePresenceOfAKeyOnly) { EXPECT_EQ(MeasuringService().Answer("GT_HSW,LGD=9"), "HSW,LGD=0"); }

TEST(GT_HSW, RepeatsThePreviousSwitchWhereAReadFails) {
  MeasuringService service;
  SetAll({10, 11, 12, 13});
  service.Fail(44, -1, 2, 2);
  EXPECT_EQ(service.Answer("GT_HSW,LGD,RTL,LPT,LPL"), "HSW,LGD=11,RTL=11,LPT=11,LPL=13");
}

TEST(GT_HSW, RepeatsNothingFromAnEarlierRequest) {
  MeasuringService service;
  SetAll({10, 11, 12, 13});
  service.Answer("GT_HSW,LPL");
  service.Fail(44);
  EXPECT_EQ(service.Answer("GT_HSW,LGD,LPL"), "HSW,LGD=0,LPL=0");
}

TEST(GT_HSW, WritesNothingWhileSuspended) { EXPECT_EQ(MeasuringService().WrittenOfSuspended("GT_HSW,LGD"), ""); }

TEST(GT_HSW, TakesNoManagerLockToAskTheLibrary) {
  MeasuringService service;
  service.Locked([&] {
    service.line.Send(CommandFrame("GT_HSW,LGD"));
    EXPECT_TRUE(WaitUntil([&] { return service.Calls({44}).size() == 1; }));
  });
}

}  // namespace
}  // namespace qxtest
