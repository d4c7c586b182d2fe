// ST_EQP and GT_EQP.
#include <cstdint>
#include <string>

#include "unit/configuration/configured_service.h"

namespace qxtest {
namespace {

using ST_EQP = Configuration;
using GT_EQP = Configuration;

constexpr std::uint32_t kTiltSwitch = 0xA50201;
constexpr std::uint32_t kFollowed = 0xB00201;

struct SwitchRow {
  const char* key;
  std::uint32_t item;
  int highest;
};
constexpr SwitchRow kSwitches[] = {{"LPL", 0xA90201, 1}, {"BLT", 0xAA0201, 1}, {"LPT", 0xA80201, 1},
                                   {"LGD", 0xA60201, 1}, {"RTL", 0xA70201, 1}, {"TLT", kTiltSwitch, 2},
                                   {"AFO", 0xAC0201, 1}, {"L2P", kFollowed, 1}};

std::string Setting(const char* key, const std::string& value) { return std::string("ST_EQP,") + key + "=" + value; }

// ---- ST_EQP

TEST_F(ST_EQP, StoresEachSwitchInItsOwnItem) {
  for (const SwitchRow& row : kSwitches) {
    for (int value = row.highest; value >= 0; --value) {
      EXPECT_EQ(Answer(Setting(row.key, std::to_string(value))), "ok") << row.key;
      EXPECT_EQ(service_.Item(row.item), "0" + std::to_string(value)) << row.key;
      EXPECT_EQ(Notices(), (Texts{"1537 0"})) << row.key;
    }
  }
}

TEST_F(ST_EQP, RefusesWhatASwitchDoesNotHave) {
  for (const SwitchRow& row : kSwitches) {
    for (const std::string& value : {std::to_string(row.highest + 1), std::string("255"), std::string("-1")}) {
      EXPECT_EQ(Answer(Setting(row.key, value)), "ER_PRM") << row.key << value;
    }
    EXPECT_EQ(service_.Item(row.item), row.item == kFollowed ? "none" : "00");
  }
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Transfers(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_EQP, LooksAtTheLowEightBitsOnly) {
  EXPECT_EQ(Answer("ST_EQP,LPL=257"), "ok");
  EXPECT_EQ(service_.Item(0xA90201), "01");
  EXPECT_EQ(Answer("ST_EQP,LPL=256"), "ok");
  EXPECT_EQ(service_.Item(0xA90201), "00");
  EXPECT_EQ(Answer("ST_EQP,LPL=-255"), "ok");
  EXPECT_EQ(service_.Item(0xA90201), "01");
  EXPECT_EQ(Answer("ST_EQP,TLT=258"), "ok");
  EXPECT_EQ(service_.Item(kTiltSwitch), "02");
  EXPECT_EQ(Answer("ST_EQP,LPL=258"), "ER_PRM");
}

TEST_F(ST_EQP, TakesTextWithoutANumberForZero) {
  service_.SetItem(0xA90201, "01");
  service_.SetItem(0xAA0201, "01");
  EXPECT_EQ(Answer("ST_EQP,LPL=on,BLT,LPT= 1x"), "ok");
  EXPECT_EQ(Answer("GT_EQP,LPL,BLT,LPT"), "EQP,LPL=0,BLT=0,LPT=1");
}

TEST_F(ST_EQP, GoesThroughItsOwnOrder) {
  EXPECT_EQ(Answer("ST_EQP,L2P=1,AFO=1,TLT=2,RTL=1,LGD=1,LPT=1,BLT=1,LPL=1"), "ok");
  EXPECT_EQ(service_.CallsOf({"QxSystem", "I2C5:", "GIO1:"}),
            (Texts{"62(A90201, 01)", "62(AA0201, 01)", "62(A80201, 01)", "62(A60201, 01)", "62(A70201, 01)",
                   "62(A50201, 02)", "write(16, 081102, 0)", "62(AC0201, 01)", "61(B00201)", "62(B00201, 01)", "open()",
                   "control(14, 1)", "close()"}));
  EXPECT_EQ(Notices(), Texts(8, "1537 0"));
}

TEST_F(ST_EQP, StopsAtTheFirstBadValueAndKeepsTheKeysBeforeIt) {
  EXPECT_EQ(Answer("ST_EQP,AFO=1,RTL=2,LGD=1,LPL=1"), "ER_PRM");
  EXPECT_EQ(Answer("GT_EQP,LPL,LGD,RTL,AFO"), "EQP,LPL=1,LGD=1,RTL=0,AFO=0");
  EXPECT_EQ(Notices(), (Texts{"1537 0", "1537 0"}));
}

TEST_F(ST_EQP, DoesNothingWithoutAKeyItKnows) {
  for (const char* command : {"ST_EQP", "ST_EQP,XYZ=7", "ST_EQP,lpl=7"}) EXPECT_EQ(Answer(command), "ok") << command;
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_EQP, TellsEvenWhenTheStoreRefuses) {
  service_.Fail(62);
  EXPECT_EQ(Answer("ST_EQP,LPL=1,TLT=1"), "ok");
  EXPECT_EQ(service_.Item(0xA90201), "00");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 081101, 0)"}));
  EXPECT_EQ(Notices(), (Texts{"1537 0", "1537 0"}));
}

TEST_F(ST_EQP, SendsEachTiltSwitchToTheTiltSensor) {
  for (const char* value : {"1", "2", "0", "0"}) Answer(Setting("TLT", value));
  EXPECT_EQ(Transfers(),
            (Texts{"write(16, 081101, 0)", "write(16, 081102, 0)", "write(16, 081100, 0)", "write(16, 081100, 0)"}));
  Answer("ST_EQP,TLT=2");
  EXPECT_EQ(service_.UseSensors([](auto& sensors) { return sensors.angle.tilt_switch; }), 2);
}

TEST_F(ST_EQP, TriesTheTiltSensorFortyTimesAndReportsNoFailure) {
  service_.UseSensors([](auto& sensors) { sensors.angle.present = false; });
  EXPECT_EQ(Answer("ST_EQP,TLT=1,AFO=1"), "ok");
  EXPECT_EQ(Transfers(), Texts(40, "write(16, 081101, 0)"));
  EXPECT_EQ(Answer("GT_EQP,TLT,AFO"), "EQP,TLT=1,AFO=1");
  EXPECT_EQ(Notices(), (Texts{"1537 0", "1537 0"}));
}

TEST_F(ST_EQP, EndsItsAttemptsWithTheFirstThatSucceeds) {
  service_.FailCalls("I2C5:", "write", 1, 2);
  EXPECT_EQ(Answer("ST_EQP,TLT=2"), "ok");
  EXPECT_EQ(Transfers(), Texts(3, "write(16, 081102, 0)"));
  EXPECT_EQ(service_.UseSensors([](auto& sensors) { return sensors.angle.tilt_switch; }), 2);
}

TEST_F(ST_EQP, HoldsTheTiltSensorsMutexDuringTheTransfer) {
  const OtherOwner other(u"KORAX-HALBERN.RZM.I2CSensorMtx");
  service_.DelayCall("I2C5:", "write", 600);
  service_.line.Send(CommandFrame("ST_EQP,TLT=1"));
  EXPECT_TRUE(WaitUntil([&] { return !other.IsFree(); }));
  EXPECT_NE(service_.line.TakeWithAcks(1), "");
  EXPECT_TRUE(other.IsFree());
}

TEST_F(ST_EQP, LetsTheLineFollowWhenTheSwitchChanges) {
  EXPECT_EQ(Answer("ST_EQP,L2P=1"), "ok");
  EXPECT_EQ(service_.Line(14), 1);
  EXPECT_EQ(Answer("ST_EQP,L2P=0"), "ok");
  EXPECT_EQ(service_.Line(14), 0);
  EXPECT_EQ(Transfers(), (Texts{"open()", "control(14, 1)", "close()", "open()", "control(14, 0)", "close()"}));
}

TEST_F(ST_EQP, LeavesTheLineAloneWhenTheSwitchStays) {
  service_.SetItem(kFollowed, "01");
  EXPECT_EQ(Answer("ST_EQP,L2P=1"), "ok");
  EXPECT_EQ(StoreCalls(), (Texts{"61(B00201, 01)", "62(B00201, 01)"}));
  EXPECT_EQ(Transfers(), Texts{});
  EXPECT_EQ(Notices(), (Texts{"1537 0"}));
}

TEST_F(ST_EQP, ComparesWholeBytesForTheLine) {
  service_.SetItem(kFollowed, "07");
  Answer("ST_EQP,L2P=1");
  EXPECT_EQ(Transfers(), (Texts{"open()", "control(14, 1)", "close()"}));
}

TEST_F(ST_EQP, TakesASwitchThatCannotBeReadForZero) {
  service_.SetItem(kFollowed, "01");
  service_.Fail(61);
  Answer("ST_EQP,L2P=0");
  EXPECT_EQ(Transfers(), Texts{});
  Answer("ST_EQP,L2P=1");
  EXPECT_EQ(Transfers(), (Texts{"open()", "control(14, 1)", "close()"}));
}

TEST_F(ST_EQP, ReportsNoFailureOfTheLine) {
  service_.FailCalls("GIO1:", "control", 1, 1);
  EXPECT_EQ(Answer("ST_EQP,L2P=1"), "ok");
  service_.FailCalls("GIO1:", "open");
  EXPECT_EQ(Answer("ST_EQP,L2P=0"), "ok");
  EXPECT_EQ(service_.Line(14), 0);
  EXPECT_EQ(Notices(), (Texts{"1537 0", "1537 0"}));
}

TEST_F(ST_EQP, HoldsTheLinesMutexWhileItDrivesTheLine) {
  const OtherOwner other(u"KORAX-HALVERN.RZM.GPIOLaipacMtx");
  service_.DelayCall("GIO1:", "control", 600);
  service_.line.Send(CommandFrame("ST_EQP,L2P=1"));
  EXPECT_TRUE(WaitUntil([&] { return !other.IsFree(); }));
  EXPECT_NE(service_.line.TakeWithAcks(1), "");
  EXPECT_TRUE(other.IsFree());
}

// ---- GT_EQP

TEST_F(GT_EQP, AnswersInItsOwnOrder) {
  service_.SetItem(0xA90201, "01");
  EXPECT_EQ(Answer("GT_EQP,L2P,LPL"), "EQP,LPL=1,L2P=0");
}

TEST_F(GT_EQP, AnswersEachSwitchFromItsOwnItemAsAByte) {
  std::string all = "GT_EQP";
  std::string answer = "EQP";
  int value = 248;
  for (const SwitchRow& row : kSwitches) {
    const auto byte = static_cast<std::uint8_t>(value++);
    service_.SetValue(row.item, byte);
    all.insert(6, std::string(",") + row.key);
    answer += std::string(",") + row.key + "=" + std::to_string(byte);
  }
  EXPECT_EQ(Answer(all), answer);
}

TEST_F(GT_EQP, LooksAtThePresenceOfAKeyOnly) {
  EXPECT_EQ(Answer("GT_EQP,TLT=2,LPL=9"), "EQP,LPL=0,TLT=0");
  EXPECT_EQ(StoreCalls(), (Texts{"61(A90201, 00)", "61(A50201, 00)"}));
}

TEST_F(GT_EQP, AnswersTheWordAloneWithoutAKeyItKnows) {
  EXPECT_EQ(Answer("GT_EQP"), "EQP");
  EXPECT_EQ(Answer("GT_EQP,lpl,XYZ"), "EQP");
}

TEST_F(GT_EQP, AnswersZeroForWhatCannotBeRead) {
  service_.SetItem(0xA90201, "01");
  service_.Fail(61);
  EXPECT_EQ(Answer("GT_EQP,LPL,L2P"), "EQP,LPL=0,L2P=0");
}

TEST(EquipmentCommands, AreSetInToolsModeOnly) {
  const DeliveredConfiguration delivered;
  MeasuringService service;
  EXPECT_EQ(service.Answer("ST_EQP,LPL=1"), "ER_CMD");
  EXPECT_EQ(service.Answer("GT_EQP,LPL"), "EQP,LPL=0");
  service.manager.processor().SetToolsMode();
  EXPECT_EQ(service.Answer("ST_EQP,LPL=1"), "ok");
  EXPECT_EQ(service.Answer("GT_EQP,LPL"), "EQP,LPL=1");
}

}  // namespace
}  // namespace qxtest
