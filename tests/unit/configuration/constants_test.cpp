// ST_CST and GT_CST: which constants there are, their order, the store's integers. Texts, sensors and the date have
// tests of their own.
#include <cstdint>
#include <string>

#include "unit/configuration/configured_service.h"

namespace qxtest {
namespace {

using ST_CST = Configuration;
using GT_CST = Configuration;

constexpr std::uint32_t kIdentification = 0xC10401;
constexpr std::uint32_t kMeterType = 0xA40201;

struct IntegerRow {
  const char* key;
  std::uint32_t item;
  int notice;
};
constexpr IntegerRow kIntegers[] = {{"AN_VOF", 0x810501, 6},  {"AN_VOU", 0xE00501, 7},  {"AN_SAX", 0xE10501, 8},
                                    {"AN_TAX", 0xE40501, 9},  {"TL_XOF", 0x830501, 12}, {"TL_YOF", 0x840501, 13},
                                    {"TL_XOU", 0xE20501, 14}, {"TL_YOU", 0xE30501, 15}};

// ---- ST_CST

TEST_F(ST_CST, WritesAllInItsOwnOrder) {
  EXPECT_EQ(Answer("ST_CST,IS_DTM=20240229,TL_YOU=8,TL_XOU=7,TL_YOF=6,TL_XOF=5,TL_YSL=515,TL_XSL=258,AN_TAX=4,AN_SAX=3,"
                   "AN_VOU=2,AN_VOF=1,ED_OFS=513,IN_IDN=1a2b,IN_BRD=VQ,IN_SER=AB,IN_NAM=N"),
            "ok");
  const std::string rest(4 * 23, '0');
  EXPECT_EQ(service_.CallsOf({"QxSystem", "I2C5:"}),
            (Texts{"61(090821, 4B006F007200610078002C00440058002D003100" + rest + ")",
                   "62(090821, 4B006F007200610078002C004E00" + rest + "000000000000)",
                   "62(020110, 41420000000000000000000000000000)",
                   "61(090821, 4B006F007200610078002C004E00" + rest + "000000000000)",
                   "62(090821, 560051002C004E00" + rest + "000000000000000000000000)",
                   "62(030201, 02)",
                   "62(C10401, 2B1A)",
                   "61(A40201, 00)",
                   "write(22, 001D0102, 0)",
                   "write(22, 40C3, 0)",
                   "62(810501, 01000000)",
                   "62(E00501, 02000000)",
                   "62(E10501, 03000000)",
                   "62(E40501, 04000000)",
                   "write(16, 081001020203, 0)",
                   "62(830501, 05000000)",
                   "62(840501, 06000000)",
                   "62(E20501, 07000000)",
                   "62(E30501, 08000000)",
                   "62(C20701, 00000000E024E640)"}));
}

TEST_F(ST_CST, TellsEachConstantByItsNumber) {
  Answer(
      "ST_CST,IS_DTM=20240229,TL_YOU=8,TL_XOU=7,TL_YOF=6,TL_XOF=5,TL_YSL=2,TL_XSL=1,AN_TAX=4,AN_SAX=3,AN_VOU=2,"
      "AN_VOF=1,ED_OFS=9,IN_IDN=1,IN_BRD=VQ,IN_SER=1,IN_NAM=1");
  Texts expected;
  for (int detail = 1; detail <= 16; ++detail) expected.push_back("1281 " + std::to_string(detail));
  EXPECT_EQ(Notices(), expected);
}

TEST_F(ST_CST, StoresEachIntegerInItsOwnItem) {
  std::int32_t value = -2;
  for (const IntegerRow& row : kIntegers) {
    EXPECT_EQ(Answer(std::string("ST_CST,") + row.key + "=" + std::to_string(value)), "ok");
    EXPECT_EQ(service_.Item(row.item), service_.DigitsOf(&value, sizeof value)) << row.key;
    EXPECT_EQ(Notices(), (Texts{"1281 " + std::to_string(row.notice)})) << row.key;
    --value;
  }
}

TEST_F(ST_CST, ReadsIntegersLeniently) {
  EXPECT_EQ(Answer("ST_CST,AN_VOF=abc,AN_VOU= -12x,AN_SAX=99999999999,AN_TAX=-99999999999,TL_XOF"), "ok");
  EXPECT_EQ(Answer("GT_CST,AN_VOF,AN_VOU,AN_SAX,AN_TAX,TL_XOF"),
            "CST,AN_VOF=0,AN_VOU=-12,AN_SAX=2147483647,AN_TAX=-2147483648,TL_XOF=0");
}

TEST_F(ST_CST, ReadsTheIdentificationInHexadecimal) {
  EXPECT_EQ(Answer("ST_CST,IN_IDN=1a2b"), "ok");
  EXPECT_EQ(service_.Item(kIdentification), "2B1A");
  EXPECT_EQ(Answer("GT_CST,IN_IDN"), "CST,IN_IDN=1A2B");
  EXPECT_EQ(Notices(), (Texts{"1281 4"}));
}

TEST_F(ST_CST, KeepsSixteenBitsOfTheIdentification) {
  const struct {
    const char* text;
    const char* kept;
  } rows[] = {{"12345", "2345"},    {"0xBEEF", "BEEF"},   {"-1", "FFFF"},        {"xyz", "0000"}, {" 7g", "0007"},
              {"7FFF0001", "0001"}, {"80000001", "FFFF"}, {"-80000001", "0000"}, {"0x", "0000"}};
  for (const auto& row : rows) {
    EXPECT_EQ(Answer(std::string("ST_CST,IN_IDN=") + row.text), "ok") << row.text;
    EXPECT_EQ(Answer("GT_CST,IN_IDN"), std::string("CST,IN_IDN=") + row.kept) << row.text;
  }
}

TEST_F(ST_CST, IgnoresWhatCanOnlyBeRead) {
  EXPECT_EQ(Answer("ST_CST,IN_TYP=ABC,IN_EDN=5,ED_TYP=VNS"), "ok");
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
  EXPECT_EQ(Answer("GT_CST,IN_TYP,IN_EDN,ED_TYP"), "CST,IN_TYP=RZM,IN_EDN=0,ED_TYP=NPL");
}

TEST_F(ST_CST, DoesNothingWithoutAKeyItKnows) {
  for (const char* command : {"ST_CST", "ST_CST,XX_YYY=1", "ST_CST,an_vof=1"}) EXPECT_EQ(Answer(command), "ok");
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Transfers(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_CST, StopsAtTheFirstBadValueAndKeepsTheKeysBeforeIt) {
  EXPECT_EQ(Answer("ST_CST,AN_VOF=5,IN_IDN=5,IN_BRD=Nobody,IN_SER=S1,IN_NAM=N1"), "ER_PRM");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_SER,IN_BRD,IN_IDN,AN_VOF"),
            "CST,IN_NAM=N1,IN_SER=S1,IN_BRD=Korax,IN_IDN=0000,AN_VOF=0");
  EXPECT_EQ(Notices(), (Texts{"1281 1", "1281 2"}));
}

TEST_F(ST_CST, StopsAtEveryKindOfBadValue) {
  const std::string rest = ",IS_DTM=20240229,AN_VOF=5";
  for (const char* bad : {"IN_NAM=12345678901234567", "IN_SER=12345678901234567", "IN_BRD=korax"}) {
    EXPECT_EQ(Answer("ST_CST," + (bad + rest)), "ER_PRM") << bad;
  }
  EXPECT_EQ(Notices(), Texts{});
  EXPECT_EQ(Answer("ST_CST,IS_DTM=20230229,TL_YOU=5"), "ER_PRM");
  EXPECT_EQ(Notices(), (Texts{"1281 15"}));
  EXPECT_EQ(Answer("GT_CST,AN_VOF,TL_YOU,IS_DTM"), "CST,AN_VOF=0,TL_YOU=5,IS_DTM=20240131000000");
}

TEST_F(ST_CST, TellsEvenWhenTheStoreRefuses) {
  service_.Fail(62);
  EXPECT_EQ(Answer("ST_CST,IN_NAM=N,IN_SER=S,IN_BRD=VQ,IN_IDN=1,AN_VOF=1,IS_DTM=20240229"), "ok");
  EXPECT_EQ(Notices(), (Texts{"1281 1", "1281 2", "1281 3", "1281 4", "1281 6", "1281 16"}));
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_SER,IN_BRD,IN_IDN,AN_VOF,IS_DTM"),
            "CST,IN_NAM=DX-1,IN_SER=000000,IN_BRD=Korax,IN_IDN=0000,AN_VOF=0,IS_DTM=20240131000000");
}

TEST_F(ST_CST, WritesNothingWhenAFieldIsGivenTwice) {
  EXPECT_EQ(Answer("ST_CST,AN_VOF=1,AN_VOF=2"), "ER_PRM");
  EXPECT_EQ(StoreCalls(), Texts{});
}

// ---- GT_CST

TEST_F(GT_CST, AnswersInItsOwnOrder) {
  EXPECT_EQ(Answer("GT_CST,IS_DTM,TL_YOU,TL_XOU,TL_YOF,TL_XOF,TL_YSL,TL_XSL,AN_TAX,AN_SAX,AN_VOU,AN_VOF,ED_OFS,ED_TYP,"
                   "IN_EDN,IN_IDN,IN_BRD,IN_SER,IN_NAM,IN_TYP"),
            "CST,IN_TYP=RZM,IN_NAM=DX-1,IN_SER=000000,IN_BRD=Korax,IN_IDN=0000,IN_EDN=0,ED_TYP=NPL,ED_OFS=0,AN_VOF=0,"
            "AN_VOU=0,AN_SAX=0,AN_TAX=0,TL_XSL=0,TL_YSL=0,TL_XOF=0,TL_YOF=0,TL_XOU=0,TL_YOU=0,IS_DTM=20240131000000");
}

TEST_F(GT_CST, AnswersEachIntegerFromItsOwnItem) {
  std::string answer = "CST";
  std::int32_t value = -2147483647 - 1;
  for (const IntegerRow& row : kIntegers) {
    service_.SetValue(row.item, value);
    answer += std::string(",") + row.key + "=" + std::to_string(value);
    value += 1000000007 / 2;
  }
  EXPECT_EQ(Answer("GT_CST,TL_YOU,TL_XOU,TL_YOF,TL_XOF,AN_TAX,AN_SAX,AN_VOU,AN_VOF"), answer);
}

TEST_F(GT_CST, ReadsWhatIsAskedForOnly) {
  EXPECT_EQ(Answer("GT_CST,IN_TYP,IN_EDN"), "CST,IN_TYP=RZM,IN_EDN=0");
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Answer("GT_CST,AN_VOF=99"), "CST,AN_VOF=0");
  EXPECT_EQ(StoreCalls(), (Texts{"61(810501, 00000000)"}));
  EXPECT_EQ(Transfers(), Texts{});
}

TEST_F(GT_CST, AnswersTheWordAloneWithoutAKeyItKnows) {
  EXPECT_EQ(Answer("GT_CST"), "CST");
  EXPECT_EQ(Answer("GT_CST,in_typ,XX_YYY"), "CST");
}

TEST_F(GT_CST, WritesTheIdentificationWithFourDigits) {
  service_.SetItem(kIdentification, "0A00");
  EXPECT_EQ(Answer("GT_CST,IN_IDN"), "CST,IN_IDN=000A");
  service_.SetItem(kIdentification, "FEFF");
  EXPECT_EQ(Answer("GT_CST,IN_IDN"), "CST,IN_IDN=FFFE");
}

TEST_F(GT_CST, KnowsTwoTypesOfDistanceMeters) {
  for (const char* type : {"00", "02", "81", "FF"}) {
    service_.SetItem(kMeterType, type);
    EXPECT_EQ(Answer("GT_CST,ED_TYP"), "CST,ED_TYP=NPL") << type;
  }
  service_.SetItem(kMeterType, "01");
  EXPECT_EQ(Answer("GT_CST,ED_TYP"), "CST,ED_TYP=VNS");
}

TEST_F(GT_CST, AnswersZerosAndNothingsForWhatCannotBeRead) {
  service_.Fail(61);
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_SER,IN_BRD,IN_IDN,ED_TYP,ED_OFS,AN_VOF,IS_DTM"),
            "CST,IN_NAM=,IN_SER=,IN_BRD=,IN_IDN=0000,ED_TYP=NPL,ED_OFS=0,AN_VOF=0,IS_DTM=18991230000000");
}

TEST_F(GT_CST, PostsNoNotice) {
  Answer("GT_CST,IN_NAM,ED_OFS,TL_XSL,IS_DTM");
  EXPECT_EQ(Notices(), Texts{});
}

TEST(ConstantsCommands, AreWrittenInToolsModeOnly) {
  const DeliveredConfiguration delivered;
  MeasuringService service;
  EXPECT_EQ(service.Answer("ST_CST,AN_VOF=1"), "ER_CMD");
  EXPECT_EQ(service.Answer("GT_CST,AN_VOF"), "CST,AN_VOF=0");
  service.manager.processor().SetToolsMode();
  EXPECT_EQ(service.Answer("ST_CST,AN_VOF=1"), "ok");
  EXPECT_EQ(service.Answer("GT_CST,AN_VOF"), "CST,AN_VOF=1");
}

}  // namespace
}  // namespace qxtest
