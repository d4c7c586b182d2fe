// GT_BAT and the battery levels.
#include "instrument/battery.h"

#include <gtest/gtest.h>

#include <string>

#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using host::instrument::Battery;
using host::instrument::BatteryLevels;

constexpr std::uint32_t kBatteryChanged = 0x20000;

class GT_BAT : public testing::Test {
 protected:
  static void Set(BatteryLevels levels) {
    Battery::Instance().Change([&](BatteryLevels& now) { now = levels; });
  }
  void Announce(BatteryLevels levels) {
    Set(levels);
    service_.Event(kBatteryChanged);
  }
  ControllerService service_;
};

TEST_F(GT_BAT, AnswersInItsOwnOrder) {
  Announce({80, 71, 5, 1});
  EXPECT_EQ(service_.Answer("GT_BAT,SEL,EXT,RGT,LFT,GEN"), "BAT,GEN=75,LFT=80,RGT=71,EXT=5,SEL=RGT");
  EXPECT_EQ(service_.Answer("GT_BAT,SEL=x,GEN=9"), "BAT,GEN=75,SEL=RGT");
}

TEST_F(GT_BAT, AnswersTheWordAloneWithoutItsKeys) { EXPECT_EQ(service_.Answer("GT_BAT"), "BAT"); }

TEST_F(GT_BAT, AnswersZerosUntilTheFirstBatteryEvent) {
  Set({80, 71, 5, 1});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN,LFT,RGT,EXT,SEL"), "BAT,GEN=0,LFT=0,RGT=0,EXT=0,SEL=LFT");
}

TEST_F(GT_BAT, TakesTheMeanOfBothBatteriesCutToAWholeNumber) {
  Announce({80, 71, 100, 0});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN"), "BAT,GEN=75");
  Announce({0, 1, 100, 1});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN"), "BAT,GEN=0");
}

TEST_F(GT_BAT, TakesTheExternalLevelWhileItIsTheSource) {
  Announce({80, 71, 42, 2});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN,SEL"), "BAT,GEN=42,SEL=EXT");
}

TEST_F(GT_BAT, NamesNoOtherSource) {
  Announce({80, 71, 42, 3});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN,SEL"), "BAT,GEN=75,SEL=");
  Announce({80, 71, 42, 0xFFFFFFFF});
  EXPECT_EQ(service_.Answer("GT_BAT,SEL"), "BAT,SEL=");
}

TEST_F(GT_BAT, AnswersHugeLevelsAsSignedNumbers) {
  Announce({0xFFFFFFFF, 0xFFFFFFFF, 0x80000000, 0});
  EXPECT_EQ(service_.Answer("GT_BAT,GEN,LFT,EXT"), "BAT,GEN=-1,LFT=-1,EXT=-2147483648");
}

TEST_F(GT_BAT, IgnoresOtherEvents) {
  Set({80, 71, 5, 1});
  service_.Event(~kBatteryChanged & ~0x7u);
  EXPECT_EQ(service_.Answer("GT_BAT,LFT"), "BAT,LFT=0");
}

TEST_F(GT_BAT, KeepsTheLastLevelsWhenTheLibraryHasNoQuery) {
  Announce({80, 71, 5, 1});
  for (const char* call : {"GetModuleHandleW", "GetProcAddressW"}) {
    const Failing failing(call, 127);
    Announce({10, 11, 12, 0});
    EXPECT_EQ(service_.Answer("GT_BAT,LFT,SEL"), "BAT,LFT=80,SEL=RGT") << call;
  }
}

TEST_F(GT_BAT, WaitsForTheManagerLock) {
  Announce({80, 71, 5, 1});
  service_.Locked([&] {
    service_.line.Send(CommandFrame("GT_BAT,LFT"));
    Set({10, 11, 12, 0});
    service_.Event(kBatteryChanged);
  });
  EXPECT_EQ(service_.line.TakeWithAcks(1), ReplyFrame("BAT,LFT=10") + std::string(kAck));
}

}  // namespace
}  // namespace qxtest
