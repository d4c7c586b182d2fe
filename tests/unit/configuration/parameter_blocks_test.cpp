// RD_PBK and WR_PBK.
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "unit/configuration/configured_service.h"
#include "unit/valuetext/generator.h"

namespace qxtest {
namespace {

struct ItemRow {
  int number;
  std::uint32_t item;
  std::size_t bytes;
};
constexpr ItemRow kItems[] = {
    {2, 0x020110, 16},  {3, 0x030201, 1},   {9, 0x090821, 66},  {64, 0x400201, 1},  {128, 0x800104, 4},
    {129, 0x810501, 4}, {130, 0x820501, 4}, {131, 0x830501, 4}, {132, 0x840501, 4}, {133, 0x850501, 4},
    {134, 0x860208, 8}, {160, 0xA00201, 1}, {161, 0xA10201, 1}, {162, 0xA20201, 1}, {163, 0xA30201, 1},
    {164, 0xA40201, 1}, {165, 0xA50201, 1}, {166, 0xA60201, 1}, {167, 0xA70201, 1}, {168, 0xA80201, 1},
    {169, 0xA90201, 1}, {170, 0xAA0201, 1}, {171, 0xAB0201, 1}, {172, 0xAC0201, 1}, {173, 0xAD0201, 1},
    {174, 0xAE0201, 1}, {175, 0xAF0201, 1}, {192, 0xC00201, 1}, {193, 0xC10401, 2}, {194, 0xC20701, 8},
    {224, 0xE00501, 4}, {225, 0xE10501, 4}, {226, 0xE20501, 4}, {227, 0xE30501, 4}, {228, 0xE40501, 4},
    {229, 0xE50501, 4}, {230, 0xE60701, 8}, {231, 0xE70501, 4}};

class ParameterBlockCommands : public Configuration {
 protected:
  std::string Read(const std::string& number) { return Answer("RD_PBK,PID=" + number); }
  std::string Read(int number) { return Read(std::to_string(number)); }
  std::string Write(const std::string& number, const std::string& value) {
    return Answer("WR_PBK,PID=" + number + ",VAL=" + value);
  }
  std::string Write(int number, const std::string& value) { return Write(std::to_string(number), value); }
  static std::string Value(int number, const std::string& value) {
    return "PBK,PID=" + std::to_string(number) + ",VAL=" + value;
  }
  Texts Calls() const { return service_.CallsOf({"QxSystem", "ParamBlk"}); }
};
using RD_PBK = ParameterBlockCommands;
using WR_PBK = ParameterBlockCommands;

std::string RandomDigits(Generator& generator, std::size_t bytes) {
  std::string digits(2 * bytes, '0');
  for (char& digit : digits) digit = "0123456789ABCDEF"[generator.UpTo(15)];
  return digits;
}

std::string ItemName(std::uint32_t item) {
  const auto bytes = {static_cast<std::uint8_t>(item >> 16), static_cast<std::uint8_t>(item >> 8),
                      static_cast<std::uint8_t>(item)};
  return DeliveredConfiguration::DigitsOf(std::data(bytes), 3);
}

// ---- both

TEST_F(WR_PBK, AndRdPbkPassEveryItemOfTheStoreOnByteByByte) {
  Generator generator(41);
  for (const ItemRow& row : kItems) {
    const std::string value = RandomDigits(generator, row.bytes);
    service_.Forget();
    EXPECT_EQ(Write(row.number, value), "ok") << row.number;
    EXPECT_EQ(service_.Item(row.item), value) << row.number;
    EXPECT_EQ(Read(row.number), Value(row.number, value));
    const std::string call = "(" + ItemName(row.item) + ", " + value + ")";
    EXPECT_EQ(Calls(), (Texts{"62" + call, "61" + call})) << row.number;
  }
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(WR_PBK, AndRdPbkPassEveryOtherNumberToTheParameterBlock) {
  std::set<int> items;
  for (const ItemRow& row : kItems) items.insert(row.number);
  for (int number = 0; number < 256; ++number) {
    if (items.count(number) != 0) continue;
    const std::string text = std::to_string(number);
    service_.SetBlock(static_cast<std::uint8_t>(number), "0102");
    service_.Forget();
    EXPECT_EQ(Write(number, "0A1B"), "ok") << number;
    EXPECT_EQ(Read(number), Value(number, "0A1B"));
    EXPECT_EQ(Calls(), (Texts{"GetParameterItem(" + text + ", 0102)", "ReplaceParameterItem(" + text + ", 0A1B)",
                              "GetParameterItem(" + text + ", 0A1B)"}));
  }
}

TEST_F(WR_PBK, AndRdPbkAreServedInToolsModeOnly) {
  MeasuringService service;
  EXPECT_EQ(service.Answer("RD_PBK,PID=165"), "ER_CMD");
  EXPECT_EQ(service.Answer("WR_PBK,PID=165,VAL=01"), "ER_CMD");
  service.manager.processor().SetToolsMode();
  EXPECT_EQ(service.Answer("WR_PBK,PID=165,VAL=01"), "ok");
  EXPECT_EQ(service.Answer("RD_PBK,PID=165"), "PBK,PID=165,VAL=01");
}

// ---- RD_PBK

TEST_F(RD_PBK, AnswersOneByteAsTwoDigits) {
  EXPECT_EQ(Read(165), "PBK,PID=165,VAL=00");
  service_.SetItem(0xA50201, "02");
  EXPECT_EQ(Read(165), "PBK,PID=165,VAL=02");
}

TEST_F(RD_PBK, AnswersADoubleAsItLiesInTheStore) { EXPECT_EQ(Read(194), "PBK,PID=194,VAL=000000004021E640"); }

TEST_F(RD_PBK, AnswersTheBrandAndNameWithAllItsZeros) {
  EXPECT_EQ(Read(9), "PBK,PID=9,VAL=4B006F007200610078002C00440058002D003100" + std::string(4 * 23, '0'));
}

TEST_F(RD_PBK, AnswersFromTheParameterBlock) { EXPECT_EQ(Read(7), "PBK,PID=7,VAL=01020304"); }

TEST_F(RD_PBK, AnswersTheNumberAsItWasWritten) {
  EXPECT_EQ(Read("0165"), "PBK,PID=0165,VAL=00");
  EXPECT_EQ(Read(" +165x"), "PBK,PID= +165x,VAL=00");
  EXPECT_EQ(Answer("RD_PBK,XYZ=1,PID=165,VAL=9"), "PBK,PID=165,VAL=00");
}

TEST_F(RD_PBK, TakesTextWithoutANumberForZero) {
  service_.SetBlock(0, "FF");
  EXPECT_EQ(Read("abc"), "PBK,PID=abc,VAL=FF");
  EXPECT_EQ(Answer("RD_PBK,PID"), "PBK,PID=,VAL=FF");
}

TEST_F(RD_PBK, IsRefusedWithoutANumber) {
  EXPECT_EQ(Answer("RD_PBK"), "ER_PRM");
  EXPECT_EQ(Answer("RD_PBK,pid=165"), "ER_PRM");
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(RD_PBK, IsRefusedForANumberThatNoneOfTheTwoHas) {
  for (const int number : {0, 1, 8, 176, 195, 223, 232, 255}) EXPECT_EQ(Read(number), "ER_PRM") << number;
}

TEST_F(RD_PBK, IsRefusedBeyondAByte) {
  service_.SetBlock(255, "01");
  service_.SetBlock(0, "02");
  service_.Forget();
  for (const char* number : {"-1", "256", "263", "421", "65701", "-91", "4294967461", "99999999999"}) {
    EXPECT_EQ(Read(number), "ER_PRM") << number;
  }
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(RD_PBK, IsRefusedForAnEntryWithoutBytes) {
  service_.SetBlock(8, "");
  EXPECT_EQ(Read(8), "ER_PRM");
}

TEST_F(RD_PBK, AnswersTheLongestEntry) {
  Generator generator(42);
  const std::string value = RandomDigits(generator, 254);
  service_.SetBlock(8, value);
  EXPECT_EQ(Read(8), Value(8, value));
}

TEST_F(RD_PBK, IsRefusedForALengthThatTheRecordCannotHold) {
  service_.SetBlock(8, std::string(510, '1'));
  EXPECT_EQ(Read(8), "ER_PRM");
}

TEST_F(RD_PBK, IsRefusedWhenThePlatformFails) {
  service_.Fail(61);
  service_.FailCalls("ParamBlk", "GetParameterItem");
  for (const int number : {165, 9, 194, 7}) EXPECT_EQ(Read(number), "ER_PRM") << number;
}

TEST_F(RD_PBK, IsRefusedForAnItemThatIsNotInTheStore) {
  service_.RemoveItem(0xA50201);
  EXPECT_EQ(Read(165), "ER_PRM");
}

// ---- WR_PBK

TEST_F(WR_PBK, TakesDigitsOfEitherCase) {
  EXPECT_EQ(Write(193, "aBcD"), "ok");
  EXPECT_EQ(Read(193), "PBK,PID=193,VAL=ABCD");
}

TEST_F(WR_PBK, NeverChangesTheLengthOfAnItem) {
  for (const ItemRow& row : kItems) {
    const std::string before = service_.Item(row.item);
    EXPECT_EQ(Write(row.number, std::string(2 * row.bytes + 2, '1')), "ER_PRM") << row.number;
    const std::string shorter = row.bytes == 1 ? "1" : std::string(2 * row.bytes - 2, '1');
    EXPECT_EQ(Write(row.number, shorter), "ER_PRM") << row.number;
    EXPECT_EQ(Answer("WR_PBK,VAL,PID=" + std::to_string(row.number)), "ER_PRM") << row.number;
    EXPECT_EQ(service_.Item(row.item), before);
  }
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(WR_PBK, NeverChangesTheLengthOfAnEntry) {
  for (const char* value : {"010203", "0102030405", "01"}) EXPECT_EQ(Write(7, value), "ER_PRM") << value;
  EXPECT_EQ(Answer("WR_PBK,PID=7,VAL"), "ER_PRM");
  EXPECT_EQ(service_.Block(7), "01020304");
  EXPECT_EQ(service_.CallsOf({"ParamBlk"}), Texts(4, "GetParameterItem(7, 01020304)"));
}

TEST_F(WR_PBK, WritesNoBytesToAnEntryWithoutAny) {
  service_.SetBlock(8, "");
  EXPECT_EQ(Answer("WR_PBK,PID=8,VAL"), "ok");
  EXPECT_EQ(Calls(), (Texts{"GetParameterItem(8, )", "ReplaceParameterItem(8, )"}));
  EXPECT_EQ(Write(8, "00"), "ER_PRM");
}

TEST_F(WR_PBK, WritesTheLongestEntry) {
  Generator generator(43);
  service_.SetBlock(8, std::string(508, '0'));
  const std::string value = RandomDigits(generator, 254);
  EXPECT_EQ(Write(8, value), "ok");
  EXPECT_EQ(service_.Block(8), value);
}

TEST_F(WR_PBK, IsRefusedForALengthThatTheRecordCannotHold) {
  service_.SetBlock(8, std::string(510, '1'));
  EXPECT_EQ(Write(8, std::string(510, '2')), "ER_PRM");
  EXPECT_EQ(service_.Block(8), std::string(510, '1'));
  EXPECT_EQ(Calls(), (Texts{"GetParameterItem(8, " + std::string(508, '1') + ")"}));
}

TEST_F(WR_PBK, IsRefusedWithoutANumberOrAValue) {
  for (const char* command : {"WR_PBK", "WR_PBK,PID=165", "WR_PBK,VAL=01", "WR_PBK,PID=165,val=01"}) {
    EXPECT_EQ(Answer(command), "ER_PRM") << command;
  }
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(WR_PBK, IsRefusedForAValueThatIsNotHexadecimal) {
  for (const char* value : {"0", "011", "0g", "G0", " 01", "0x01", "-1", "01 ", "1\\,"}) {
    EXPECT_EQ(Write(165, value), "ER_PRM") << value;
    EXPECT_EQ(Write(7, value), "ER_PRM") << value;
  }
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(WR_PBK, IsRefusedForANumberThatNoneOfTheTwoHas) {
  for (const char* number : {"0", "1", "8", "176", "255"}) EXPECT_EQ(Write(number, "01"), "ER_PRM") << number;
  for (const ItemRow& row : kItems) EXPECT_EQ(service_.Block(static_cast<std::uint8_t>(row.number)), "none");
}

TEST_F(WR_PBK, IsRefusedBeyondAByte) {
  service_.SetBlock(255, "01");
  for (const char* number : {"-1", "256", "263", "421", "-91", "4294967461"}) {
    EXPECT_EQ(Write(number, "02"), "ER_PRM") << number;
  }
  EXPECT_EQ(Calls(), Texts{});
  EXPECT_EQ(service_.Block(255), "01");
}

TEST_F(WR_PBK, DoesNotReportThatTheStoreRefuses) {
  service_.Fail(62);
  EXPECT_EQ(Write(165, "01"), "ok");
  EXPECT_EQ(service_.Item(0xA50201), "00");
}

TEST_F(WR_PBK, IsRefusedWhenTheParameterBlockFails) {
  service_.FailCalls("ParamBlk", "GetParameterItem", 1, 1);
  EXPECT_EQ(Write(7, "0A0B0C0D"), "ER_PRM");
  service_.FailCalls("ParamBlk", "ReplaceParameterItem", 1, 1);
  EXPECT_EQ(Write(7, "0A0B0C0D"), "ER_PRM");
  EXPECT_EQ(service_.Block(7), "01020304");
}

TEST_F(WR_PBK, PostsNoNotice) {
  Write(165, "01");
  Write(7, "0A0B0C0D");
  EXPECT_EQ(Notices(), Texts{});
}

}  // namespace
}  // namespace qxtest
