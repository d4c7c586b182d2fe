// The platform's parameter block: ParamBlk's two calls and "parameter_blocks" in the state document.
#include "instrument/parameter_blocks.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>

#include "instrument/instrument_libraries.h"
#include "unit/instrument/stored_section_test.h"

namespace qxtest {
namespace {

class ParameterBlocksTest : public StoredSectionTest {
 protected:
  ParameterBlocksTest() : StoredSectionTest(host::instrument::MakeParameterBlocksSection()) {}
};

ParameterRecord Record(std::uint8_t number, const std::vector<std::uint8_t>& value = {}) {
  ParameterRecord record = {};
  record.number = number;
  record.length = static_cast<std::uint8_t>(value.size());
  std::copy(value.begin(), value.end(), record.value);
  return record;
}

bool Same(const ParameterRecord& left, const ParameterRecord& right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

TEST_F(ParameterBlocksTest, HoldsOneEntryAtFirst) {
  EXPECT_EQ(Now().dump(), R"({"7":"01020304"})");
  ParameterRecord record = Record(7);
  EXPECT_TRUE(GetParameterItem(&record));
  EXPECT_TRUE(Same(record, Record(7, {1, 2, 3, 4})));
}

TEST_F(ParameterBlocksTest, ReplacesAnEntryWithTheRecord) {
  const ParameterRecord record = Record(7, {0xFF, 0});
  EXPECT_TRUE(ReplaceParameterItem(&record));
  EXPECT_EQ(Now()["7"], "FF00");
}

TEST_F(ParameterBlocksTest, HoldsValuesOf0To254BytesUnderAllNumbers) {
  for (const int number : {0, 1, 254, 255}) {
    Patched("{\"" + std::to_string(number) + "\":\"" + std::string(508, 'A') + "\"}");
    ParameterRecord record = Record(static_cast<std::uint8_t>(number));
    EXPECT_TRUE(GetParameterItem(&record));
    EXPECT_TRUE(Same(record, Record(record.number, std::vector<std::uint8_t>(254, 0xAA))));
  }
  EXPECT_EQ(Patched(R"({"255":""})")["255"], "");
  ParameterRecord empty = Record(255);
  EXPECT_TRUE(GetParameterItem(&empty));
  EXPECT_EQ(empty.length, 0);
}

TEST_F(ParameterBlocksTest, ANumberWithoutAnEntryFailsAndLeavesTheRecord) {
  ParameterRecord record = Record(8, {5});
  EXPECT_FALSE(GetParameterItem(&record));
  EXPECT_TRUE(Same(record, Record(8, {5})));
  EXPECT_FALSE(ReplaceParameterItem(&record));
  EXPECT_EQ(Now().size(), 1u);
}

TEST_F(ParameterBlocksTest, ALengthAbove254AndNoRecordFail) {
  ParameterRecord record = Record(7, {5});
  record.length = 255;
  EXPECT_FALSE(ReplaceParameterItem(&record));
  EXPECT_FALSE(ReplaceParameterItem(nullptr));
  EXPECT_FALSE(GetParameterItem(nullptr));
  EXPECT_EQ(Now()["7"], "01020304");
}

TEST_F(ParameterBlocksTest, ListsNumberAndValueOfBothCalls) {
  ParameterRecord record = Record(7, {0xAB});
  ReplaceParameterItem(&record);
  GetParameterItem(&record);
  record.length = 255;
  ReplaceParameterItem(&record);
  record.number = 8;
  GetParameterItem(&record);
  GetParameterItem(nullptr);
  EXPECT_EQ(Calls(), (std::vector<std::string>{
                         R"(ParamBlk "ReplaceParameterItem" (7, "AB") = 1)",
                         R"(ParamBlk "GetParameterItem" (7, "AB") = 1)", R"(ParamBlk "ReplaceParameterItem" (7) = 0)",
                         R"(ParamBlk "GetParameterItem" (8) = 0)", R"(ParamBlk "GetParameterItem" (null) = 0)"}));
}

TEST_F(ParameterBlocksTest, AFaultKeepsACallFromBeingMade) {
  for (const char* call : {"GetParameterItem", "ReplaceParameterItem"}) {
    host::AddFault({"ParamBlk", std::string(call), 1, 1, std::nullopt, 5, std::nullopt, 0});
  }
  ParameterRecord record = Record(7, {9});
  EXPECT_FALSE(ReplaceParameterItem(&record));
  EXPECT_FALSE(GetParameterItem(&record));
  EXPECT_TRUE(Same(record, Record(7, {9})));
  EXPECT_EQ(Now()["7"], "01020304");
}

TEST_F(ParameterBlocksTest, APatchAddsReplacesAndRemoves) {
  EXPECT_EQ(Patched(R"({"10":"ff"})").dump(), R"({"7":"01020304","10":"FF"})");
  EXPECT_EQ(Patched(R"({"7":"00","10":null,"11":null})").dump(), R"({"7":"00"})");
}

TEST_F(ParameterBlocksTest, ABadPatchIsRefusedWhole) {
  const std::string too_long = R"({"7":")" + std::string(510, '0') + R"("})";
  for (const std::string& patch :
       {std::string("null"), std::string("[]"), too_long, std::string(R"({"1":"00","256":"00"})"),
        std::string(R"({"-1":"00"})"), std::string(R"({"07":"00"})"), std::string(R"({"":"00"})"),
        std::string(R"({" 7":"00"})"), std::string(R"({"7x":"00"})"), std::string(R"({"256":null})"),
        std::string(R"({"7":"0"})"), std::string(R"({"7":"0x"})"), std::string(R"({"7":7})"),
        std::string(R"({"7":{}})")}) {
    ExpectRefused(patch);
  }
}

TEST_F(ParameterBlocksTest, IsResetAndRestoredToJustWhatWasThere) {
  Patched(R"({"7":null,"10":"FF"})");
  const StateJson whole = Now();
  state_.Reset();
  EXPECT_EQ(Now().dump(), R"({"7":"01020304"})");
  section_->Restore(whole);
  EXPECT_EQ(Now().dump(), R"({"10":"FF"})");
}

TEST_F(ParameterBlocksTest, AChangeThatCannotBeKeptIsNotMade) {
  LetNothingBeKept();
  const ParameterRecord record = Record(7, {9});
  EXPECT_FALSE(ReplaceParameterItem(&record));
  EXPECT_THROW(Patched(R"({"7":null})"), std::system_error);
  EXPECT_EQ(Now().dump(), R"({"7":"01020304"})");
}

TEST_F(ParameterBlocksTest, AnyThreadReplacesAndReadsWholeValues) {
  std::thread writer([] {
    for (std::uint8_t round = 1; round <= 200; ++round) {
      const ParameterRecord record = Record(7, std::vector<std::uint8_t>(round, round));
      EXPECT_TRUE(ReplaceParameterItem(&record));
    }
  });
  Patched(R"({"10":"FF"})");
  for (int round = 0; round < 200; ++round) {
    ParameterRecord record = Record(7);
    EXPECT_TRUE(GetParameterItem(&record));
    const bool first = record.length == 4 && record.value[0] == 1;
    EXPECT_TRUE(first || std::count(record.value, record.value + record.length, record.length) == record.length);
  }
  writer.join();
}

}  // namespace
}  // namespace qxtest
