// The constants that live in the sensors: the distance meter's offset and the tilt sensor's pair.
#include <cstdint>
#include <string>

#include "unit/configuration/configured_service.h"

namespace qxtest {
namespace {

class SensorConstants : public Configuration {
 protected:
  static void SetMeterType(const char* digits) { DeliveredConfiguration::SetItem(0xA40201, digits); }
  static void SetOffset(std::int16_t offset) {
    DeliveredConfiguration::UseSensors([=](auto& sensors) { sensors.edm.offset = offset; });
  }
  static std::int16_t offset() {
    return DeliveredConfiguration::UseSensors([](auto& sensors) { return sensors.edm.offset; });
  }
  static void SetPair(std::uint16_t x, std::uint16_t y) {
    DeliveredConfiguration::UseSensors([=](auto& sensors) {
      sensors.angle.x = x;
      sensors.angle.y = y;
    });
  }
  std::string Pair() { return Answer("GT_CST,TL_XSL,TL_YSL"); }

  /// Has a command carried out and looks whether the mutex stays held while the nth call of a kind is under way, and is
  /// free afterwards.
  void ExpectHeld(const std::u16string& mutex, const std::string& command, const std::string& call, std::uint64_t nth) {
    const OtherOwner other(mutex);
    service_.Forget();
    service_.DelayCall("I2C5:", call, 800, nth);
    service_.line.Send(CommandFrame(command));
    const std::size_t before = (call == "read" ? 1 : 0) + nth - 1;  // transfers of the sequence until then
    EXPECT_TRUE(WaitUntil([&] { return Transfers().size() == before && !other.IsFree(); })) << command;
    EXPECT_FALSE(other.IsFree()) << command;
    EXPECT_NE(service_.line.TakeWithAcks(1), "");
    EXPECT_TRUE(other.IsFree()) << command;
    host::ClearFaults();
  }
};
using ED_OFS = SensorConstants;
using TL_XSL = SensorConstants;
using TL_YSL = SensorConstants;

// ---- ED_OFS

TEST_F(ED_OFS, IsReadFromTheDistanceMeter) {
  SetOffset(0x1234);
  EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=4660");
  EXPECT_EQ(service_.CallsOf({"I2C5:", "QxSystem"}), (Texts{"write(22, C01D, 0)", "read(22, , 3)", "61(A40201, 00)"}));
}

TEST_F(ED_OFS, IsASignedNumberAsItIsForMostMeters) {
  for (const std::int16_t raw : {0, 1, -1, 250, -250, 255, 256, 32767, -32768}) {
    SetOffset(raw);
    EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=" + std::to_string(raw));
  }
}

TEST_F(ED_OFS, IsScaledByTenAndTurnedRoundForTheOtherType) {
  SetMeterType("01");
  for (const int raw : {0, 1, 4, 5, 9, 10, 14, 15, 19, 99, 100, 250, 32767}) {
    // (raw + 0.5) / 10, towards zero, in whole numbers
    const int tenths = (10 * raw + 5) / 100;
    SetOffset(static_cast<std::int16_t>(raw));
    EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=" + std::to_string(-tenths)) << raw;
    SetOffset(static_cast<std::int16_t>(-raw));
    EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=" + std::to_string(tenths)) << -raw;
  }
  SetOffset(-32768);
  EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=3276");
}

TEST_F(ED_OFS, IsWrittenAndThenStored) {
  EXPECT_EQ(Answer("ST_CST,ED_OFS=4660"), "ok");
  EXPECT_EQ(service_.CallsOf({"I2C5:", "QxSystem"}),
            (Texts{"61(A40201, 00)", "write(22, 001D3412, 0)", "write(22, 40C3, 0)"}));
  EXPECT_EQ(offset(), 0x1234);
  EXPECT_EQ(Notices(), (Texts{"1281 5"}));
}

TEST_F(ED_OFS, IsWrittenTimesMinusTenForTheOtherType) {
  SetMeterType("01");
  EXPECT_EQ(Answer("ST_CST,ED_OFS=25"), "ok");
  EXPECT_EQ(Transfers(), (Texts{"write(22, 001D06FF, 0)", "write(22, 40C3, 0)"}));
  EXPECT_EQ(offset(), -250);
  EXPECT_EQ(Answer("GT_CST,ED_OFS"), "CST,ED_OFS=25");
}

TEST_F(ED_OFS, IsWrittenWithItsLowSixteenBits) {
  const struct {
    const char* text;
    std::int16_t plain;
    std::int16_t scaled;
  } rows[] = {{"-1", -1, 10},          {"65535", -1, 10}, {"32768", -32768, 0},   {"-32769", 32767, 10},
              {"10000", 10000, 31072}, {"abc", 0, 0},     {"2147483647", -1, 10}, {" 7mm", 7, -70}};
  for (const auto& row : rows) {
    SetMeterType("00");
    EXPECT_EQ(Answer(std::string("ST_CST,ED_OFS=") + row.text), "ok");
    EXPECT_EQ(offset(), row.plain) << row.text;
    SetMeterType("01");
    EXPECT_EQ(Answer(std::string("ST_CST,ED_OFS=") + row.text), "ok");
    EXPECT_EQ(offset(), row.scaled) << row.text;
  }
}

TEST_F(ED_OFS, LeavesNoReplyWhenItCannotBeRead) {
  service_.FailCalls("I2C5:", "read");
  EXPECT_EQ(service_.Answers("GT_CST,IN_TYP,IN_NAM,ED_OFS,AN_VOF"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), (Texts{"write(22, C01D, 0)", "read(22, , 3)"}));
}

TEST_F(ED_OFS, IsAskedForFortyTimes) {
  service_.UseSensors([](auto& sensors) { sensors.edm.present = false; });
  EXPECT_EQ(service_.Answers("GT_CST,IN_TYP,ED_OFS"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), Texts(40, "write(22, C01D, 0)"));
}

TEST_F(ED_OFS, FailsWithoutANoticeWhenItIsNotWritten) {
  service_.FailCalls("I2C5:", "write");
  EXPECT_EQ(service_.Answers("ST_CST,AN_VOF=5,ED_OFS=7,IN_IDN=3"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), Texts(40, "write(22, 001D0700, 0)"));
  EXPECT_EQ(Notices(), (Texts{"1281 4"}));
  host::ClearFaults();
  EXPECT_EQ(Answer("GT_CST,IN_IDN,ED_OFS,AN_VOF"), "CST,IN_IDN=0003,ED_OFS=0,AN_VOF=0");
}

TEST_F(ED_OFS, FailsWhenItIsWrittenButNotStored) {
  service_.FailCalls("I2C5:", "write", 2);
  EXPECT_EQ(service_.Answers("ST_CST,ED_OFS=7"), (Texts{"ER_FAL"}));
  Texts expected(41, "write(22, 40C3, 0)");
  expected.front() = "write(22, 001D0700, 0)";
  EXPECT_EQ(Transfers(), expected);
  EXPECT_EQ(offset(), 0);
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ED_OFS, IsTriedAgainWhenATransferFails) {
  service_.FailCalls("I2C5:", "write", 1, 1);
  service_.FailCalls("I2C5:", "write", 3, 1);
  EXPECT_EQ(Answer("ST_CST,ED_OFS=7"), "ok");
  EXPECT_EQ(Transfers(),
            (Texts{"write(22, 001D0700, 0)", "write(22, 001D0700, 0)", "write(22, 40C3, 0)", "write(22, 40C3, 0)"}));
  EXPECT_EQ(offset(), 7);
}

TEST_F(ED_OFS, HoldsTheMetersMutexFromTheFirstTransferToTheLast) {
  const std::u16string mutex = u"KORAX-HALBERN.RZM.I2CEdmMtx";
  ExpectHeld(mutex, "GT_CST,ED_OFS", "read", 1);
  ExpectHeld(mutex, "ST_CST,ED_OFS=1", "write", 2);
}

TEST_F(ED_OFS, GivesTheMutexBackAfterAFailure) {
  const OtherOwner other(u"KORAX-HALBERN.RZM.I2CEdmMtx");
  service_.FailCalls("I2C5:", "read");
  EXPECT_EQ(Answer("GT_CST,ED_OFS"), "ER_FAL");
  EXPECT_TRUE(other.IsFree());
}

// ---- TL_XSL, TL_YSL

TEST_F(TL_XSL, IsReadFromTheTiltSensor) {
  SetPair(0x0102, 0x0304);
  EXPECT_EQ(Answer("GT_CST,TL_XSL"), "CST,TL_XSL=258");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)"}));
}

TEST_F(TL_YSL, IsReadFromTheTiltSensor) {
  SetPair(0x0102, 0x0304);
  EXPECT_EQ(Answer("GT_CST,TL_YSL"), "CST,TL_YSL=772");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)"}));
}

TEST_F(TL_YSL, IsReadTogetherWithTheOther) {
  SetPair(65535, 32768);
  EXPECT_EQ(Answer("GT_CST,TL_YSL,TL_XSL"), "CST,TL_XSL=65535,TL_YSL=32768");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)"}));
}

TEST_F(TL_YSL, IsWrittenTogetherWithTheOther) {
  EXPECT_EQ(Answer("ST_CST,TL_YSL=772,TL_XSL=258"), "ok");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 081001020304, 0)"}));
  EXPECT_EQ(Pair(), "CST,TL_XSL=258,TL_YSL=772");
  EXPECT_EQ(Notices(), (Texts{"1281 10", "1281 11"}));
}

TEST_F(TL_XSL, LeavesTheOtherAsItIs) {
  SetPair(1, 0x0304);
  EXPECT_EQ(Answer("ST_CST,TL_XSL=258"), "ok");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)", "write(16, 081001020304, 0)"}));
  EXPECT_EQ(Notices(), (Texts{"1281 10"}));
}

TEST_F(TL_YSL, LeavesTheOtherAsItIs) {
  SetPair(0x0102, 1);
  EXPECT_EQ(Answer("ST_CST,TL_YSL=772"), "ok");
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)", "write(16, 081001020304, 0)"}));
  EXPECT_EQ(Notices(), (Texts{"1281 11"}));
}

TEST_F(TL_XSL, IsWrittenWithItsLowSixteenBits) {
  EXPECT_EQ(Answer("ST_CST,TL_XSL=-1,TL_YSL=65537"), "ok");
  EXPECT_EQ(Pair(), "CST,TL_XSL=65535,TL_YSL=1");
  EXPECT_EQ(Answer("ST_CST,TL_XSL=abc,TL_YSL= 12x"), "ok");
  EXPECT_EQ(Pair(), "CST,TL_XSL=0,TL_YSL=12");
}

TEST_F(TL_XSL, LeavesNoReplyWhenItCannotBeRead) {
  service_.FailCalls("I2C5:", "read");
  EXPECT_EQ(service_.Answers("GT_CST,IN_TYP,AN_VOF,TL_XSL,TL_YSL,IS_DTM"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)"}));
}

TEST_F(TL_XSL, IsNotWrittenWhenTheOtherCannotBeRead) {
  service_.FailCalls("I2C5:", "read");
  EXPECT_EQ(service_.Answers("ST_CST,AN_TAX=4,TL_XSL=1,TL_XOF=5"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), (Texts{"write(16, 0011, 0)", "read(16, , 5)"}));
  EXPECT_EQ(Notices(), (Texts{"1281 9"}));
}

TEST_F(TL_XSL, FailsWithoutANoticeWhenThePairIsNotWritten) {
  service_.FailCalls("I2C5:", "write");
  EXPECT_EQ(service_.Answers("ST_CST,TL_XSL=258,TL_YSL=772,TL_XOF=5"), (Texts{"ER_FAL"}));
  EXPECT_EQ(Transfers(), Texts(40, "write(16, 081001020304, 0)"));
  EXPECT_EQ(Notices(), Texts{});
  host::ClearFaults();
  EXPECT_EQ(Answer("GT_CST,TL_XSL,TL_YSL,TL_XOF"), "CST,TL_XSL=0,TL_YSL=0,TL_XOF=0");
}

TEST_F(TL_XSL, HoldsTheTiltSensorsMutexFromTheFirstTransferToTheLast) {
  ExpectHeld(u"KORAX-HALBERN.RZM.I2CSensorMtx", "GT_CST,TL_XSL", "read", 1);
  ExpectHeld(u"KORAX-HALBERN.RZM.I2CSensorMtx", "ST_CST,TL_XSL=1,TL_YSL=2", "write", 1);
}

}  // namespace
}  // namespace qxtest
