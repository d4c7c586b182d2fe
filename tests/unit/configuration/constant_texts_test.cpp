// The texts among the constants: brand and name, which share one item of the store, and the serial number.
#include <string>

#include "common/text/text.h"
#include "unit/configuration/configured_service.h"

namespace qxtest {
namespace {

using IN_NAM = Configuration;
using IN_BRD = Configuration;
using IN_SER = Configuration;

constexpr std::uint32_t kBrandAndName = 0x090821;
constexpr std::uint32_t kBrandCode = 0x030201;
constexpr std::uint32_t kSerial = 0x020110;

/// The item's 33 characters, or fewer with zeros behind them, as digits.
std::string Record(std::u16string text) {
  text.resize(33);
  return DeliveredConfiguration::DigitsOf(text.data(), 66);
}

/// The other ANSI code page, for the time of a test.
struct JapaneseText {
  JapaneseText() { host::SetAnsiCodePage(932); }
  ~JapaneseText() { host::SetAnsiCodePage(1252); }
};

// ---- IN_NAM

TEST_F(IN_NAM, IsWhatStandsBehindTheFirstComma) {
  EXPECT_EQ(Answer("GT_CST,IN_BRD,IN_NAM"), "CST,IN_NAM=DX-1,IN_BRD=Korax");
  service_.SetBrandAndName(u"Ostra,");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=,IN_BRD=Ostra");
  service_.SetBrandAndName(u",DX");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=DX,IN_BRD=");
  service_.SetBrandAndName(u"A,B,C");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=B\\,C,IN_BRD=A");
}

TEST_F(IN_NAM, IsEmptyWithoutAComma) {
  service_.SetBrandAndName(u"Halvern MV");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=,IN_BRD=Halvern MV");
  service_.SetBrandAndName(u"");
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=,IN_BRD=");
}

TEST_F(IN_NAM, EndsAtTheFirstZero) {
  service_.SetBrandAndName(std::u16string(u"VQ,A\0B,C", 8));
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=A,IN_BRD=VQ");
  service_.SetBrandAndName(std::u16string(u"VQ\0,A", 5));
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=,IN_BRD=VQ");
}

TEST_F(IN_NAM, EndsWithTheItemWithoutAZero) {
  service_.SetBrandAndName(u"VQ," + std::u16string(30, u'x'));
  EXPECT_EQ(Answer("GT_CST,IN_NAM"), "CST,IN_NAM=" + std::string(30, 'x'));
  service_.SetBrandAndName(std::u16string(33, u'y'));
  EXPECT_EQ(Answer("GT_CST,IN_NAM,IN_BRD"), "CST,IN_NAM=,IN_BRD=" + std::string(33, 'y'));
}

TEST_F(IN_NAM, KeepsTheBrandAndItsCode) {
  service_.SetBrandAndName(u"Halvern,Old name");
  service_.SetItem(kBrandCode, "01");
  EXPECT_EQ(Answer("ST_CST,IN_NAM=New"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Halvern,New"));
  EXPECT_EQ(service_.Item(kBrandCode), "01");
  EXPECT_EQ(Notices(), (Texts{"1281 1"}));
}

TEST_F(IN_NAM, GetsACommaWhereThereWasNone) {
  service_.SetBrandAndName(u"Anything");
  EXPECT_EQ(Answer("ST_CST,IN_NAM=N"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Anything,N"));
}

TEST_F(IN_NAM, ReplacesAllBehindTheFirstComma) {
  service_.SetBrandAndName(u"A,B,C");
  EXPECT_EQ(Answer("ST_CST,IN_NAM=N"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"A,N"));
}

TEST_F(IN_NAM, HasSixteenCharactersAtMost) {
  EXPECT_EQ(Answer("ST_CST,IN_NAM=1234567890123456"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,1234567890123456"));
  EXPECT_EQ(Answer("ST_CST,IN_NAM=12345678901234567"), "ER_PRM");
  EXPECT_EQ(Answer("ST_CST,IN_NAM=" + std::string(8000, 'x')), "ER_PRM");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,1234567890123456"));
  EXPECT_EQ(Notices(), (Texts{"1281 1"}));
}

TEST_F(IN_NAM, MayBeEmpty) {
  EXPECT_EQ(Answer("ST_CST,IN_NAM"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,"));
}

TEST_F(IN_NAM, IsCutWhereItDoesNotFitBehindTheBrand) {
  service_.SetBrandAndName(std::u16string(30, u'b'));
  EXPECT_EQ(Answer("ST_CST,IN_NAM=name"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(std::u16string(30, u'b') + u",na"));
  service_.SetBrandAndName(std::u16string(33, u'b'));
  EXPECT_EQ(Answer("ST_CST,IN_NAM=name"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(std::u16string(33, u'b')));
}

TEST_F(IN_NAM, ComesBackWithItsCommasAndBackslashes) {
  EXPECT_EQ(Answer("ST_CST,IN_NAM=a\\,b\\\\c=d"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,a,b\\c=d"));
  EXPECT_EQ(Answer("GT_CST,IN_NAM"), "CST,IN_NAM=a\\,b\\\\c=d");
}

TEST_F(IN_NAM, GoesThroughTheAnsiCodePage) {
  EXPECT_EQ(Answer("ST_CST,IN_NAM=\xD6\x80"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,\u00D6\u20AC"));
  EXPECT_EQ(Answer("GT_CST,IN_NAM"), "CST,IN_NAM=\xD6\x80");
  service_.SetBrandAndName(u"VQ,A\u4E2DB");
  EXPECT_EQ(Answer("GT_CST,IN_NAM"), "CST,IN_NAM=A?B");
}

TEST_F(IN_NAM, ComesBackWholeInACodePageOfTwoBytes) {
  const JapaneseText japanese;
  EXPECT_EQ(Answer("ST_CST,IN_NAM=\x83\\\\\x93\xFA"), "ok");  // the second byte of the first is a backslash
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,\u30BD\u65E5"));
  EXPECT_EQ(Answer("GT_CST,IN_NAM"), "CST,IN_NAM=\x83\\\\\x93\xFA");
}

TEST_F(IN_NAM, FailsWhenThePlatformConvertsNoText) {
  {
    const Failing failing("WideCharToMultiByte");
    EXPECT_EQ(Answer("GT_CST,IN_TYP,IN_NAM"), "ER_FAL");
  }
  const Failing failing("MultiByteToWideChar");
  EXPECT_EQ(Answer("ST_CST,IN_NAM=New"), "ER_FAL");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Korax,DX-1"));
  EXPECT_EQ(Notices(), Texts{});
}

// ---- IN_BRD

TEST_F(IN_BRD, IsOneOfSixWithItsCode) {
  const struct {
    const char* text;
    const char16_t* wide;
  } brands[] = {{"Korax", u"Korax"},           {"Halvern", u"Halvern"},       {"VQ", u"VQ"},
                {"Halvern MV", u"Halvern MV"}, {"Halvern KP", u"Halvern KP"}, {"Ostra", u"Ostra"}};
  int code = 0;
  for (const auto& brand : brands) {
    EXPECT_EQ(Answer(std::string("ST_CST,IN_BRD=") + brand.text), "ok");
    EXPECT_EQ(service_.Item(kBrandAndName), Record(brand.wide + std::u16string(u",DX-1")));
    EXPECT_EQ(service_.Item(kBrandCode), "0" + std::to_string(code++));
    EXPECT_EQ(Answer("GT_CST,IN_BRD"), std::string("CST,IN_BRD=") + brand.text);
    EXPECT_EQ(Notices(), (Texts{"1281 3"}));
  }
}

TEST_F(IN_BRD, IsRefusedWhenItIsNoneOfThem) {
  for (const char* text :
       {"korax", "KORAX", "Korax ", " Korax", "Halvern M", "Halvern  MV", "V", "VQ2", "2", "Korax\\,"}) {
    EXPECT_EQ(Answer(std::string("ST_CST,IN_BRD=") + text), "ER_PRM") << text;
  }
  EXPECT_EQ(Answer("ST_CST,IN_BRD"), "ER_PRM");
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(IN_BRD, KeepsTheNameAsItIs) {
  service_.SetBrandAndName(u"Nobody,A,B\u4E2D");
  EXPECT_EQ(Answer("ST_CST,IN_BRD=VQ"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"VQ,A,B\u4E2D"));
  EXPECT_EQ(service_.Item(kBrandCode), "02");
}

TEST_F(IN_BRD, GetsNoCommaWhereThereWasNone) {
  service_.SetBrandAndName(u"Anything");
  EXPECT_EQ(Answer("ST_CST,IN_BRD=Ostra"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Ostra"));
  service_.SetBrandAndName(u"Anything,");
  EXPECT_EQ(Answer("ST_CST,IN_BRD=Ostra"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Ostra,"));
}

TEST_F(IN_BRD, CutsANameThatDoesNotFitAnyMore) {
  service_.SetBrandAndName(u"VQ," + std::u16string(30, u'n'));
  EXPECT_EQ(Answer("ST_CST,IN_BRD=Halvern MV"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"Halvern MV," + std::u16string(22, u'n')));
}

TEST_F(IN_BRD, IsWrittenBeforeItsCode) {
  service_.Fail(62, -1, 2, 1);
  EXPECT_EQ(Answer("ST_CST,IN_BRD=VQ"), "ok");
  EXPECT_EQ(service_.Item(kBrandAndName), Record(u"VQ,DX-1"));
  EXPECT_EQ(service_.Item(kBrandCode), "00");
}

TEST_F(IN_BRD, MayBeAnyTextThatTheStoreHolds) {
  service_.SetBrandAndName(u"a\\b");
  EXPECT_EQ(Answer("GT_CST,IN_BRD"), "CST,IN_BRD=a\\\\b");
}

// ---- IN_SER

TEST_F(IN_SER, IsSixteenBytesAtMost) {
  EXPECT_EQ(Answer("ST_CST,IN_SER=0123456789ABCDEF"), "ok");
  EXPECT_EQ(service_.Item(kSerial), "30313233343536373839414243444546");
  EXPECT_EQ(Answer("GT_CST,IN_SER"), "CST,IN_SER=0123456789ABCDEF");
  EXPECT_EQ(Answer("ST_CST,IN_SER=0123456789ABCDEFG"), "ER_PRM");
  EXPECT_EQ(Answer("GT_CST,IN_SER"), "CST,IN_SER=0123456789ABCDEF");
  EXPECT_EQ(Notices(), (Texts{"1281 2"}));
}

TEST_F(IN_SER, IsFilledWithZeros) {
  service_.SetItem(kSerial, "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF");
  EXPECT_EQ(Answer("ST_CST,IN_SER=A1"), "ok");
  EXPECT_EQ(service_.Item(kSerial), "41310000000000000000000000000000");
  EXPECT_EQ(Answer("ST_CST,IN_SER"), "ok");
  EXPECT_EQ(service_.Item(kSerial), std::string(32, '0'));
  EXPECT_EQ(Answer("GT_CST,IN_SER"), "CST,IN_SER=");
}

TEST_F(IN_SER, ComesBackWholeWithWhateverCharacters) {
  for (const char* text : {"a\\,b\\\\c=d", "\xD6\x80\xFF\x81", " ", "\\\\\\\\\\,\\,"}) {
    EXPECT_EQ(Answer(std::string("ST_CST,IN_SER=") + text), "ok");
    EXPECT_EQ(Answer("GT_CST,IN_SER"), std::string("CST,IN_SER=") + text);
  }
}

TEST_F(IN_SER, EndsAtTheFirstZero) {
  service_.SetItem(kSerial, "4100424344");
  EXPECT_EQ(Answer("GT_CST,IN_SER"), "CST,IN_SER=A");
}

}  // namespace
}  // namespace qxtest
