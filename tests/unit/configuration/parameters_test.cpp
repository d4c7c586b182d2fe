// ST_PRM and GT_PRM.
#include <limits>
#include <string>

#include "unit/configuration/configured_service.h"

namespace qxtest {
namespace {

using host::instrument::ParameterValues;
using ST_PRM = Configuration;
using GT_PRM = Configuration;

constexpr const char* kEdmTexts[] = {"0", "6S", "30S", "3M", "10M", "ATO"};
const std::string kAllKeys = "GT_PRM,CR_TLT,CR_T-P,CR_AXS,FT_TMP,FT_PRS,AC_EDM";

ParameterValues Values(std::array<std::int32_t, 3> integers, std::array<double, 2> doubles, std::int32_t edm) {
  ParameterValues values;
  values.integers = integers;
  values.doubles = doubles;
  values.edm = edm;
  return values;
}

// ---- ST_PRM

TEST_F(ST_PRM, SetsAllSixInItsOwnOrder) {
  EXPECT_EQ(Answer("ST_PRM,AC_EDM=3M,FT_PRS=998.5,FT_TMP=-7.25,CR_AXS=3,CR_T-P=2,CR_TLT=-1"), "ok");
  EXPECT_EQ(service_.Calls({2, 4, 47}),
            (Texts{"2(0, -1)", "2(1, 2)", "2(2, 3)", "4(0, -7.25)", "4(1, 998.5)", "47(0, 3)"}));
  EXPECT_EQ(Notices(), (Texts{"1025 1", "1025 2", "1025 3", "1025 4", "1025 5", "1025 6"}));
}

TEST_F(ST_PRM, ChangesWhatTheInstrumentHolds) {
  Answer("ST_PRM,CR_TLT=7,CR_T-P=8,CR_AXS=9,FT_TMP=20.5,FT_PRS=1000.125,AC_EDM=6S");
  const ParameterValues values = service_.parameters();
  EXPECT_EQ(values.integers, (std::array<std::int32_t, 3>{7, 8, 9}));
  EXPECT_EQ(values.doubles, (std::array<double, 2>{20.5, 1000.125}));
  EXPECT_EQ(values.edm, 1);
}

TEST_F(ST_PRM, PostsOneNoticeForOneParameter) {
  EXPECT_EQ(Answer("ST_PRM,FT_PRS=1000"), "ok");
  EXPECT_EQ(Notices(), (Texts{"1025 5"}));
  EXPECT_EQ(service_.Calls({2, 4, 47}), (Texts{"4(1, 1000)"}));
}

TEST_F(ST_PRM, TakesTheSixTextsOfTheDistanceMeter) {
  for (int code = 0; code < 6; ++code) {
    EXPECT_EQ(Answer(std::string("ST_PRM,AC_EDM=") + kEdmTexts[code]), "ok");
    EXPECT_EQ(service_.parameters().edm, code);
    EXPECT_EQ(Notices(), (Texts{"1025 6"}));
  }
}

TEST_F(ST_PRM, RefusesAnyOtherTextOfTheDistanceMeter) {
  for (const char* text : {"6s", "ato", "1", "5", "60S", "6S ", " 6S", "6", "00", "ATOM", "3M\\,"}) {
    EXPECT_EQ(Answer(std::string("ST_PRM,AC_EDM=") + text), "ER_PRM") << text;
  }
  EXPECT_EQ(Answer("ST_PRM,AC_EDM"), "ER_PRM");
  EXPECT_EQ(service_.parameters().edm, 5);
  EXPECT_EQ(service_.Calls({47}), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_PRM, KeepsAndTellsTheFiveBeforeABadText) {
  EXPECT_EQ(Answer("ST_PRM,AC_EDM=6s,CR_TLT=4,CR_T-P=5,CR_AXS=6,FT_TMP=1,FT_PRS=2"), "ER_PRM");
  EXPECT_EQ(Notices(), (Texts{"1025 1", "1025 2", "1025 3", "1025 4", "1025 5"}));
  EXPECT_EQ(Answer(kAllKeys), "PRM,CR_TLT=4,CR_T-P=5,CR_AXS=6,FT_TMP=1.0000,FT_PRS=2.0000,AC_EDM=ATO");
}

TEST_F(ST_PRM, ReadsNumbersLeniently) {
  EXPECT_EQ(Answer("ST_PRM,CR_TLT=abc,CR_T-P= -12x,CR_AXS=3.9,FT_TMP=xyz,FT_PRS= 1e3hPa"), "ok");
  EXPECT_EQ(service_.parameters().integers, (std::array<std::int32_t, 3>{0, -12, 3}));
  EXPECT_EQ(service_.parameters().doubles, (std::array<double, 2>{0, 1000}));
  EXPECT_EQ(Answer("ST_PRM,CR_TLT,FT_PRS"), "ok");
  EXPECT_EQ(service_.parameters().integers[0], 0);
  EXPECT_EQ(service_.parameters().doubles[1], 0);
}

TEST_F(ST_PRM, SetsNoLimitsOfItsOwn) {
  EXPECT_EQ(Answer("ST_PRM,CR_TLT=-2147483648,CR_T-P=2147483647,FT_TMP=-1e300"), "ok");
  EXPECT_EQ(service_.parameters().integers[0], std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(service_.parameters().integers[1], std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(service_.parameters().doubles[0], -1e300);
}

TEST_F(ST_PRM, DoesNothingWithoutAKeyItKnows) {
  for (const char* command : {"ST_PRM", "ST_PRM,XYZ=1", "ST_PRM,cr_tlt=9,FT_TMP2=9,AC_EDM =6S"}) {
    EXPECT_EQ(Answer(command), "ok") << command;
  }
  EXPECT_EQ(service_.Calls({1, 2, 3, 4, 46, 47}), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_PRM, IgnoresKeysItDoesNotKnowBesideOthers) {
  EXPECT_EQ(Answer("ST_PRM,XYZ=1,CR_AXS=0"), "ok");
  EXPECT_EQ(Notices(), (Texts{"1025 3"}));
}

TEST_F(ST_PRM, StopsAtTheFirstParameterTheInstrumentRefuses) {
  service_.Fail(4);
  EXPECT_EQ(Answer("ST_PRM,CR_TLT=4,FT_TMP=1,FT_PRS=2,AC_EDM=6S"), "ER_PRM");
  EXPECT_EQ(service_.Calls({2, 4, 47}), (Texts{"2(0, 4)", "4(0, 1)"}));
  EXPECT_EQ(Notices(), (Texts{"1025 1"}));
}

TEST_F(ST_PRM, TakesEveryStatusButZeroForARefusal) {
  for (const int status : {1, -1, -101}) {
    for (const int ordinal : {2, 4, 47}) service_.Fail(ordinal, status);
    for (const char* field : {"CR_TLT=4", "CR_T-P=4", "CR_AXS=4", "FT_TMP=4", "FT_PRS=4", "AC_EDM=0"}) {
      EXPECT_EQ(Answer(std::string("ST_PRM,") + field), "ER_PRM") << field << status;
    }
    host::ClearFaults();
  }
  EXPECT_EQ(Answer(kAllKeys), "PRM,CR_TLT=1,CR_T-P=1,CR_AXS=1,FT_TMP=15.0000,FT_PRS=1013.2500,AC_EDM=ATO");
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(ST_PRM, SetsNothingWhenAFieldIsGivenTwice) {
  EXPECT_EQ(Answer("ST_PRM,CR_TLT=4,CR_TLT=5"), "ER_PRM");
  EXPECT_EQ(Answer("ST_PRM,CR_TLT=4,CR_AXS="), "ER_PRM");
  EXPECT_EQ(service_.parameters().integers, ParameterValues().integers);
}

// ---- GT_PRM

TEST_F(GT_PRM, AnswersInItsOwnOrder) {
  EXPECT_EQ(Answer("GT_PRM,AC_EDM,CR_TLT"), "PRM,CR_TLT=1,AC_EDM=ATO");
  EXPECT_EQ(Answer("GT_PRM,AC_EDM,FT_PRS,FT_TMP,CR_AXS,CR_T-P,CR_TLT"),
            "PRM,CR_TLT=1,CR_T-P=1,CR_AXS=1,FT_TMP=15.0000,FT_PRS=1013.2500,AC_EDM=ATO");
}

TEST_F(GT_PRM, AsksTheInstrumentForWhatIsWantedOnly) {
  Answer("GT_PRM,FT_PRS,CR_T-P");
  EXPECT_EQ(service_.Calls({1, 3, 46}), (Texts{"1(1)", "3(1)"}));
}

TEST_F(GT_PRM, LooksAtThePresenceOfAKeyOnly) {
  service_.SetParameters(Values({3, 4, 5}, {20.5, 0}, 1));
  EXPECT_EQ(Answer("GT_PRM,FT_TMP=99,AC_EDM=zzz"), "PRM,FT_TMP=20.5000,AC_EDM=6S");
  EXPECT_EQ(service_.parameters().doubles[0], 20.5);
}

TEST_F(GT_PRM, AnswersTheWordAloneWithoutAKeyItKnows) {
  EXPECT_EQ(Answer("GT_PRM"), "PRM");
  EXPECT_EQ(Answer("GT_PRM,XYZ,ft_tmp"), "PRM");
}

TEST_F(GT_PRM, WritesSignedIntegersAndFourDecimals) {
  service_.SetParameters(Values({-2147483647 - 1, 2147483647, -1}, {-0.00004, 123456.78905}, 0));
  EXPECT_EQ(Answer("GT_PRM,CR_TLT,CR_T-P,CR_AXS,FT_TMP,FT_PRS"),
            "PRM,CR_TLT=-2147483648,CR_T-P=2147483647,CR_AXS=-1,FT_TMP=-0.0000,FT_PRS=123456.7891");
}

TEST_F(GT_PRM, CutsANumberAtItsBuffer) {
  service_.SetParameters(Values({1, 1, 1}, {1e100, 0}, 0));
  const std::string answer = Answer("GT_PRM,FT_TMP");
  EXPECT_EQ(answer.size(), std::string("PRM,FT_TMP=").size() + 63);
  EXPECT_EQ(answer.substr(0, 28), "PRM,FT_TMP=10000000000000000");
}

TEST_F(GT_PRM, NamesTheSixCodesOfTheDistanceMeter) {
  for (int code = 0; code < 6; ++code) {
    service_.SetParameters(Values({1, 1, 1}, {15, 1013.25}, code));
    EXPECT_EQ(Answer("GT_PRM,AC_EDM"), std::string("PRM,AC_EDM=") + kEdmTexts[code]);
  }
}

TEST_F(GT_PRM, LeavesACodeWithoutATextEmpty) {
  for (const std::int32_t code : {6, -1, 255, std::numeric_limits<std::int32_t>::max()}) {
    service_.SetParameters(Values({1, 1, 1}, {15, 1013.25}, code));
    EXPECT_EQ(Answer("GT_PRM,AC_EDM"), "PRM,AC_EDM=") << code;
  }
}

TEST_F(GT_PRM, AnswersZeroWhereTheInstrumentFails) {
  for (const int ordinal : {1, 3, 46}) service_.Fail(ordinal);
  EXPECT_EQ(Answer(kAllKeys), "PRM,CR_TLT=0,CR_T-P=0,CR_AXS=0,FT_TMP=0.0000,FT_PRS=0.0000,AC_EDM=0");
}

TEST_F(GT_PRM, PostsNoNotice) {
  Answer(kAllKeys);
  EXPECT_EQ(Notices(), Texts{});
}

TEST(ParametersCommands, AreServedWithoutToolsMode) {
  const DeliveredConfiguration delivered;
  MeasuringService service;
  EXPECT_EQ(service.Answer("ST_PRM,CR_TLT=2"), "ok");
  EXPECT_EQ(service.Answer("GT_PRM,CR_TLT"), "PRM,CR_TLT=2");
}

}  // namespace
}  // namespace qxtest
