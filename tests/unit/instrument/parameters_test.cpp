// The measurement parameters: the library's calls and "parameters" in the state document.
#include "instrument/parameters.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>
#include <thread>

#include "instrument/system_calls.h"
#include "unit/instrument/stored_section_test.h"

namespace qxtest {
namespace {

constexpr const char* kDefaults = R"({"integers":[1,1,1],"doubles":[15.0,1013.25],"edm":5})";

class ParametersTest : public StoredSectionTest {
 protected:
  ParametersTest() : StoredSectionTest(host::instrument::MakeParametersSection()) {}
};

std::int32_t Integer(std::int32_t index) {
  std::int32_t value = 0;
  EXPECT_EQ(QxSystemGetIntegerParameter(index, &value), 0);
  return value;
}

double Double(std::int32_t index) {
  double value = 0;
  EXPECT_EQ(QxSystemGetDoubleParameter(index, &value), 0);
  return value;
}

std::int32_t EdmCode() {
  std::int32_t code = 0;
  EXPECT_EQ(QxSystemGetEdmCode(0, &code), 0);
  return code;
}

TEST_F(ParametersTest, StandAtTheirDefaults) {
  EXPECT_EQ(Now().dump(), kDefaults);
  for (const std::int32_t index : {0, 1, 2}) EXPECT_EQ(Integer(index), 1);
  EXPECT_EQ(Double(0), 15.0);
  EXPECT_EQ(Double(1), 1013.25);
  EXPECT_EQ(EdmCode(), 5);
}

TEST_F(ParametersTest, ShowWhatTheLibrarySets) {
  EXPECT_EQ(QxSystemSetIntegerParameter(0, INT32_MIN), 0);
  EXPECT_EQ(QxSystemSetIntegerParameter(2, INT32_MAX), 0);
  EXPECT_EQ(QxSystemSetDoubleParameter(1, 20.5), 0);
  EXPECT_EQ(QxSystemSetEdmCode(0, -7), 0);
  EXPECT_EQ(Now().dump(), R"({"integers":[-2147483648,1,2147483647],"doubles":[15.0,20.5],"edm":-7})");
}

TEST_F(ParametersTest, AreReadByTheLibraryAsPatched) {
  Patched(R"({"integers":[-2147483648,0,2147483647],"doubles":[-4,1e300],"edm":6})");
  EXPECT_EQ(Integer(0), INT32_MIN);
  EXPECT_EQ(Integer(1), 0);
  EXPECT_EQ(Integer(2), INT32_MAX);
  EXPECT_EQ(Double(0), -4.0);
  EXPECT_EQ(Double(1), 1e300);
  EXPECT_EQ(EdmCode(), 6);
}

TEST_F(ParametersTest, AnIndexThatDoesNotExistFailsAndChangesNothing) {
  for (const std::int32_t index : {-1, 3, INT32_MIN, INT32_MAX}) {
    std::int32_t integer = 77;
    EXPECT_NE(QxSystemGetIntegerParameter(index, &integer), 0);
    EXPECT_NE(QxSystemSetIntegerParameter(index, 0), 0);
    EXPECT_EQ(integer, 77);
  }
  for (const std::int32_t index : {-1, 2, INT32_MIN, INT32_MAX}) {
    double number = 77;
    EXPECT_NE(QxSystemGetDoubleParameter(index, &number), 0);
    EXPECT_NE(QxSystemSetDoubleParameter(index, 0), 0);
    EXPECT_EQ(number, 77);
  }
  for (const std::int32_t index : {-1, 1, INT32_MIN, INT32_MAX}) {
    std::int32_t code = 77;
    EXPECT_NE(QxSystemGetEdmCode(index, &code), 0);
    EXPECT_NE(QxSystemSetEdmCode(index, 0), 0);
    EXPECT_EQ(code, 77);
  }
  EXPECT_EQ(Now().dump(), kDefaults);
}

TEST_F(ParametersTest, NowhereToPutAValueFails) {
  EXPECT_NE(QxSystemGetIntegerParameter(0, nullptr), 0);
  EXPECT_NE(QxSystemGetDoubleParameter(0, nullptr), 0);
  EXPECT_NE(QxSystemGetEdmCode(0, nullptr), 0);
}

TEST_F(ParametersTest, AreListedByOrdinalWithPlainArguments) {
  Integer(1);
  QxSystemSetIntegerParameter(3, -5);
  Double(1);
  QxSystemSetDoubleParameter(0, 20.5);
  EdmCode();
  QxSystemSetEdmCode(0, 2);
  EXPECT_EQ(Calls(),
            (std::vector<std::string>{"QxSystem 1 (1) = 0", "QxSystem 2 (3, -5) = -1", "QxSystem 3 (1) = 0",
                                      "QxSystem 4 (0, 20.5) = 0", "QxSystem 46 (0) = 0", "QxSystem 47 (0, 2) = 0"}));
}

TEST_F(ParametersTest, AFaultKeepsACallFromBeingMade) {
  host::AddFault({"QxSystem", std::int64_t{4}, 1, 1, -3, std::nullopt, std::nullopt, 0});
  EXPECT_EQ(QxSystemSetDoubleParameter(0, 20.5), -3);
  EXPECT_EQ(Double(0), 15.0);
}

TEST_F(ParametersTest, WhatIsNoFiniteNumberIsAText) {
  const double infinity = std::numeric_limits<double>::infinity(), none = std::numeric_limits<double>::quiet_NaN();
  QxSystemSetDoubleParameter(0, infinity);
  QxSystemSetDoubleParameter(1, -infinity);
  EXPECT_EQ(Now()["doubles"].dump(), R"(["inf","-inf"])");
  QxSystemSetDoubleParameter(0, std::copysign(none, 1.0));
  QxSystemSetDoubleParameter(1, std::copysign(none, -1.0));
  EXPECT_EQ(Now()["doubles"].dump(), R"(["nan","-nan"])");
}

TEST_F(ParametersTest, EveryDoubleComesBackFromItsTextAsItWas) {
  const double infinity = std::numeric_limits<double>::infinity(), none = std::numeric_limits<double>::quiet_NaN();
  for (const double value : {0.0, -0.0, 0.1, 5e-324, -1.7976931348623157e308, infinity, -infinity,
                             std::copysign(none, 1.0), std::copysign(none, -1.0)}) {
    QxSystemSetDoubleParameter(0, value);
    const std::string text = Now().dump();
    state_.Reset();
    section_->Restore(StateJson::parse(text));
    const double back = Double(0);
    EXPECT_EQ(std::memcmp(&back, &value, sizeof value), 0) << text;
  }
}

TEST_F(ParametersTest, APatchReplacesListsWholeAndLeavesTheOtherMembers) {
  EXPECT_EQ(Patched(R"({"integers":[3,2,1]})").dump(), R"({"integers":[3,2,1],"doubles":[15.0,1013.25],"edm":5})");
  EXPECT_EQ(Patched(R"({"doubles":["-inf",2]})")["doubles"].dump(), R"(["-inf",2.0])");
  EXPECT_EQ(Patched("{}")["integers"].dump(), "[3,2,1]");
}

TEST_F(ParametersTest, ABadPatchIsRefusedWhole) {
  for (const char* patch : {"null",
                            "[]",
                            "5",
                            R"({"edm":1,"more":1})",
                            R"({"edm":1,"integers":[1,1]})",
                            R"({"integers":[1,1,1,1]})",
                            R"({"integers":[1,1,1.5]})",
                            R"({"integers":[1,1,2147483648]})",
                            R"({"integers":[-2147483649,1,1]})",
                            R"({"integers":[1,1,"1"]})",
                            R"({"integers":[1,1,null]})",
                            R"({"integers":{"0":1}})",
                            R"({"integers":null})",
                            R"({"doubles":[1]})",
                            R"({"doubles":[1,2,3]})",
                            R"({"doubles":[1,"2"]})",
                            R"({"doubles":[1,"Inf"]})",
                            R"({"doubles":[1,null]})",
                            R"({"doubles":[1,true]})",
                            R"({"edm":"5"})",
                            R"({"edm":null})",
                            R"({"edm":5.0})",
                            R"({"edm":18446744073709551615})"}) {
    ExpectRefused(patch);
  }
}

TEST_F(ParametersTest, AChangeThatCannotBeKeptIsNotMade) {
  LetNothingBeKept();
  EXPECT_NE(QxSystemSetIntegerParameter(0, 9), 0);
  EXPECT_NE(QxSystemSetDoubleParameter(0, 9), 0);
  EXPECT_NE(QxSystemSetEdmCode(0, 9), 0);
  EXPECT_THROW(Patched(R"({"edm":9})"), std::system_error);
  EXPECT_EQ(Now().dump(), kDefaults);
}

TEST_F(ParametersTest, AChangeIsKeptBeforeItIsSeen) {
  std::string kept;
  section_->SetKeeper([&](const StateJson& coming) {
    EXPECT_EQ(Now().dump(), kDefaults);
    kept = coming.dump();
    return 0;
  });
  EXPECT_EQ(QxSystemSetEdmCode(0, 2), 0);
  EXPECT_EQ(kept, Now().dump());
  EXPECT_EQ(EdmCode(), 2);
}

TEST_F(ParametersTest, AnyThreadMaySetAndReadThem) {
  constexpr std::int32_t kRounds = 500;
  std::vector<std::thread> threads;
  for (const std::int32_t index : {0, 1, 2}) {
    threads.emplace_back([index] {
      for (std::int32_t round = 1; round <= kRounds; ++round) {
        QxSystemSetIntegerParameter(index, round);
        ASSERT_EQ(Integer(index), round);
      }
    });
  }
  for (int look = 0; look < 100; ++look) EXPECT_EQ(Now()["integers"].size(), 3u);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Now()["integers"].dump(), "[500,500,500]");
}

}  // namespace
}  // namespace qxtest
