// Parameters, store and parameter block: over restarts, in older files and when they cannot be kept.
#include <algorithm>

#include "instrument/instrument_libraries.h"
#include "instrument/system_calls.h"
#include "qxsim/start_error.h"
#include "tools/kept_home.h"

namespace qxtest {
namespace {

constexpr const char* kSections[] = {"parameters", "store", "parameter_blocks"};

class StoredPersistenceTest : public PersistenceTest {
 protected:
  /// The three sections alone.
  static Json Of(const Json& document) {
    Json sections;
    for (const char* name : kSections) sections[name] = document.at(name);
    return sections;
  }
};

ParameterRecord Entry(std::uint8_t number, std::uint8_t byte) {
  ParameterRecord record = {};
  record.number = number;
  record.length = 1;
  record.value[0] = byte;
  return record;
}

TEST_F(StoredPersistenceTest, AFreshHomeHoldsTheDefaults) {
  EXPECT_EQ(Of(Kept()), Of(State()));
  EXPECT_EQ(Kept()["parameters"], Json::parse(R"({"integers": [1, 1, 1], "doubles": [15.0, 1013.25], "edm": 5})"));
  EXPECT_EQ(Kept()["store"].size(), 38u);
  EXPECT_EQ(Kept()["parameter_blocks"], (Json{{"7", "01020304"}}));
}

TEST_F(StoredPersistenceTest, WhatACallHasAcknowledgedIsInTheFile) {
  EXPECT_EQ(QxSystemSetIntegerParameter(2, -9), 0);
  EXPECT_EQ(Kept()["parameters"]["integers"], (Json{1, 1, -9}));
  EXPECT_EQ(QxSystemSetDoubleParameter(0, 0.1), 0);
  EXPECT_EQ(Kept()["parameters"]["doubles"][0], 0.1);
  EXPECT_EQ(QxSystemSetEdmCode(0, 3), 0);
  EXPECT_EQ(Kept()["parameters"]["edm"], 3);
  EXPECT_EQ(QxSystemWriteStoreItem(0xA50201, "\x02"), 0);
  EXPECT_EQ(Kept()["store"]["0xA50201"], "02");
  const ParameterRecord entry = Entry(7, 0xAB);
  EXPECT_TRUE(ReplaceParameterItem(&entry));
  EXPECT_EQ(Kept()["parameter_blocks"]["7"], "AB");
}

TEST_F(StoredPersistenceTest, CallsAndPatchesSurviveARestart) {
  Ask("PATCH", "/state", Json::parse(R"({"parameters": {"integers": [3, 2, 1], "doubles": ["-inf", 0.1]},
      "store": {"0x810501": "FFFFFFFF", "0x100203": "616263"}, "parameter_blocks": {"7": null, "200": "00FF"}})"));
  EXPECT_EQ(QxSystemSetEdmCode(0, 2), 0);
  EXPECT_EQ(QxSystemWriteStoreItem(0xC10401, "\x2B\x1A"), 0);
  const Json before = Of(State());
  Restart();
  EXPECT_EQ(Of(State()), before);
  EXPECT_EQ(before["parameters"], Json::parse(R"({"integers": [3, 2, 1], "doubles": ["-inf", 0.1], "edm": 2})"));
  EXPECT_EQ(before["store"]["0xC10401"], "2B1A");
  EXPECT_EQ(before["store"]["0x100203"], "616263");
  EXPECT_EQ(before["parameter_blocks"], (Json{{"200", "00FF"}}));
}

TEST_F(StoredPersistenceTest, ResetIsKeptToo) {
  const Json before = Of(Kept());
  EXPECT_EQ(QxSystemSetEdmCode(0, 2), 0);
  EXPECT_EQ(QxSystemWriteStoreItem(0x100203, "abc"), 0);
  Ask("PATCH", "/state", {{"parameter_blocks", {{"7", nullptr}}}});
  Ask("POST", "/reset");
  EXPECT_EQ(Of(Kept()), before);
}

TEST_F(StoredPersistenceTest, AnOlderFileWithoutThemGetsTheDefaults) {
  const Json defaults = Of(State());
  EXPECT_EQ(QxSystemSetEdmCode(0, 2), 0);
  simulator_.reset();
  Fill(File(), R"({"format": "qxsim state 1", "registry": {"HKLM/X": {}}})");
  Start();
  EXPECT_EQ(Of(State()), defaults);
  EXPECT_EQ(Of(Kept()), defaults);
  EXPECT_EQ(State()["registry"], (Json{{"HKLM/X", Json::object()}}));
}

TEST_F(StoredPersistenceTest, AnItemThatAnOlderFileLacksHasItsDefault) {
  simulator_.reset();
  Fill(File(), R"({"format": "qxsim state 1", "store": {"0xA50201": "02"}, "parameters": {"edm": 1}})");
  Start();
  EXPECT_EQ(State()["store"]["0xA50201"], "02");
  EXPECT_EQ(State()["store"].size(), 38u);
  EXPECT_EQ(State()["parameters"], Json::parse(R"({"integers": [1, 1, 1], "doubles": [15.0, 1013.25], "edm": 1})"));
}

TEST_F(StoredPersistenceTest, ADamagedSectionStopsTheStartAndStaysAsItIs) {
  simulator_.reset();
  for (const char* section :
       {R"("parameters": [])", R"("parameters": {"edm": "5"})", R"("store": {"0xA50201": "0202"})",
        R"("store": {"nonsense": "02"})", R"("parameter_blocks": {"256": "00"})"}) {
    const std::string text = R"({"format": "qxsim state 1", )" + std::string(section) + "}";
    Fill(File(), text);
    EXPECT_THROW(Start(), qxsim::StartError) << text;
    EXPECT_EQ(Content(File()), text);
  }
}

TEST_F(StoredPersistenceTest, AHomeThatTakesNoFileMakesEverySetCallFail) {
  const Json before = Of(State());
  const std::string file = Content(File());
  std::filesystem::create_directories(File().string() + ".new/in the way");
  const ParameterRecord entry = Entry(7, 0xAB);
  EXPECT_EQ(QxSystemSetIntegerParameter(0, 9), -1);
  EXPECT_EQ(QxSystemSetDoubleParameter(0, 9), -1);
  EXPECT_EQ(QxSystemSetEdmCode(0, 9), -1);
  EXPECT_EQ(QxSystemWriteStoreItem(0xA50201, "\x02"), -1);
  EXPECT_FALSE(ReplaceParameterItem(&entry));
  for (const char* patch :
       {R"({"parameters": {"edm": 9}})", R"({"store": {"0xA50201": "02"}})", R"({"parameter_blocks": {"7": null}})"}) {
    EXPECT_EQ(Call("PATCH", "/state", Json::parse(patch)).status, 500) << patch;
  }
  EXPECT_EQ(Of(State()), before);
  EXPECT_EQ(Content(File()), file);
  std::filesystem::remove_all(File().string() + ".new");
  EXPECT_EQ(QxSystemSetEdmCode(0, 9), 0);
}

TEST_F(StoredPersistenceTest, ABadPatchIs400AndChangesNothingInAnySection) {
  const Json before = Of(State());
  for (const char* bad : {R"({"parameters": {"doubles": [1]}})", R"({"store": {"0xC10401": "00"}})",
                          R"({"store": {"0xC10901": "00"}})", R"({"parameter_blocks": {"x": "00"}})"}) {
    Json patch = Json::parse(R"({"parameters": {"edm": 1}, "store": {"0xA50201": "01"},
                                 "parameter_blocks": {"7": "00"}})");
    patch.update(Json::parse(bad), true);
    const qxsim::Response response = Call("PATCH", "/state", patch);
    EXPECT_EQ(response.status, 400) << patch;
    EXPECT_NE(Json::parse(response.body)["error"], "") << patch;
    EXPECT_EQ(Of(State()), before) << patch;
  }
}

TEST_F(StoredPersistenceTest, TheDocumentShowsThemAmongTheOthersInOrder) {
  const auto document = host::instrument::Json::parse(Call("GET", "/state").body);
  std::vector<std::string> names;
  for (const auto& member : document.items()) names.push_back(member.key());
  const std::vector<std::string> in_order = {"switches", "parameters", "battery", "focus", "store", "parameter_blocks"};
  EXPECT_NE(std::search(names.begin(), names.end(), in_order.begin(), in_order.end()), names.end());
}

}  // namespace
}  // namespace qxtest
