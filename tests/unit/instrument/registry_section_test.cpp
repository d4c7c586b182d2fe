// "registry" in the state document.
#include "instrument/registry_section.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "common/registry/registry.h"
#include "instrument/registry_json.h"

namespace {

using host::Registry;
using host::RegistryContent;
using host::RegistryEdit;
using host::RegistryPath;
using host::instrument::Json;
using host::instrument::RegistrySection;
using host::instrument::StateError;

class RegistrySectionTest : public testing::Test {
 protected:
  RegistrySectionTest() {
    state_.Add(&section_);
    Registry::Instance().Replace(host::EmptyRegistry());
  }
  ~RegistrySectionTest() override {
    Registry::Instance().SetKeeper(nullptr);
    Registry::Instance().Replace(host::DefaultRegistry());
  }

  Json Now() const { return state_.ToJson()["registry"]; }
  Json Patched(const char* patch) {
    state_.Patch({{"registry", Json::parse(patch)}});
    return Now();
  }
  /// What the section shows for one value of "HKLM/X".
  Json Shown(DWORD type, std::vector<BYTE> data) {
    RegistryEdit edit(host::EmptyRegistry());
    edit.SetValue({u"HKLM", u"X"}, {u"", type, std::move(data)});
    Registry::Instance().Replace(edit.content());
    return Now()["HKLM/X"][""];
  }

  RegistrySection section_;
  host::instrument::State state_;
};

constexpr const char* kExample =
    R"({"HKLM/Software/X":{"Level":{"type":"INT","value":3},"Name":{"type":"STR","value":"text"},)"
    R"("Other":{"type":7,"value":"00FF"},"Raw":{"type":"BIN","value":"0A1B"}}})";

TEST_F(RegistrySectionTest, ShowsWhatWasSet) { EXPECT_EQ(Patched(kExample).dump(), kExample); }

TEST_F(RegistrySectionTest, StoresTheBytesThatTheCallsSee) {
  Patched(kExample);
  const RegistryContent content = Registry::Instance().Content();
  const host::RegistryKey* key = host::FindRegistryKey(content, {u"HKLM", u"Software", u"X"});
  ASSERT_NE(key, nullptr);
  EXPECT_EQ(host::FindRegistryValue(*key, u"Level")->data, (std::vector<BYTE>{3, 0, 0, 0}));
  EXPECT_EQ(host::FindRegistryValue(*key, u"Level")->type, REG_DWORD);
  EXPECT_EQ(host::FindRegistryValue(*key, u"Name")->data, (std::vector<BYTE>{'t', 0, 'e', 0, 'x', 0, 't', 0, 0, 0}));
  EXPECT_EQ(host::FindRegistryValue(*key, u"Name")->type, REG_SZ);
  EXPECT_EQ(host::FindRegistryValue(*key, u"Other")->type, 7u);
}

TEST_F(RegistrySectionTest, ShowsValuesAsTheirTypeOnlyWhenNothingIsLost) {
  EXPECT_EQ(Shown(REG_DWORD, {0xFF, 0xFF, 0xFF, 0xFF}).dump(), R"({"type":"INT","value":-1})");
  EXPECT_EQ(Shown(REG_DWORD, {1, 2}).dump(), R"({"type":4,"value":"0102"})");
  EXPECT_EQ(Shown(REG_SZ, {0, 0}).dump(), R"({"type":"STR","value":""})");
  EXPECT_EQ(Shown(REG_SZ, {}).dump(), R"({"type":1,"value":""})");
  EXPECT_EQ(Shown(REG_SZ, {'a', 0}).dump(), R"({"type":1,"value":"6100"})");
  EXPECT_EQ(Shown(REG_SZ, {'a', 0, 0}).dump(), R"({"type":1,"value":"610000"})");
  EXPECT_EQ(Shown(REG_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0}).dump(), R"({"type":1,"value":"6100000062000000"})");
  EXPECT_EQ(Shown(REG_SZ, {0x00, 0xD8, 0, 0}).dump(), R"({"type":1,"value":"00D80000"})");
  EXPECT_EQ(Shown(REG_SZ, {0xFD, 0xFF, 0, 0}).dump(), "{\"type\":\"STR\",\"value\":\"\xEF\xBF\xBD\"}");
  EXPECT_EQ(Shown(REG_BINARY, {}).dump(), R"({"type":"BIN","value":""})");
}

TEST_F(RegistrySectionTest, ShowsEmptyKeysButNeitherEmptyRootsNorKeysThatOthersImply) {
  EXPECT_EQ(Now(), Json::object());
  EXPECT_EQ(Patched(R"({"HKCU/A/B":{}})").dump(), R"({"HKCU/A/B":{}})");
  EXPECT_EQ(Patched(R"({"HKCU/A/B":null})").dump(), R"({"HKCU/A":{}})");
  EXPECT_EQ(Patched(R"({"HKCU":{"":{"type":"INT","value":1}}})").dump(),
            R"({"HKCU":{"":{"type":"INT","value":1}},"HKCU/A":{}})");
}

TEST_F(RegistrySectionTest, TellsASlashInANameFromOneBetweenNames) {
  EXPECT_EQ(Patched(R"({"HKCU/a\\/b":{}})").dump(), R"({"HKCU/a\\/b":{}})");
  const RegistryContent content = Registry::Instance().Content();
  EXPECT_NE(host::FindRegistryKey(content, {u"HKCU", u"a/b"}), nullptr);
  EXPECT_EQ(Patched(R"({"HKCU/a/b":{},"HKCU/a\\/b":null})").dump(), R"({"HKCU/a/b":{}})");
}

TEST_F(RegistrySectionTest, NullDeletesAValueOrAKeyWithWhatIsUnderIt) {
  Patched(R"({"HKLM/A":{"x":{"type":"INT","value":1},"y":{"type":"INT","value":2}},"HKLM/A/B/C":{}})");
  EXPECT_EQ(Patched(R"({"HKLM/A":{"X":null,"z":null}})")["HKLM/A"].dump(), R"({"y":{"type":"INT","value":2}})");
  EXPECT_EQ(Patched(R"({"HKLM/a":null,"HKLM/nothing":null})"), Json::object());
}

TEST_F(RegistrySectionTest, MergesMembersOfAValueAndKeepsItsNamesCase) {
  Patched(kExample);
  EXPECT_EQ(Patched(R"({"HKLM/software/x":{"LEVEL":{"value":-7}}})")["HKLM/Software/X"]["Level"].dump(),
            R"({"type":"INT","value":-7})");
  EXPECT_EQ(Patched(R"({"HKLM/Software/X":{"Name":{"type":"BIN","value":"00"}}})")["HKLM/Software/X"]["Name"].dump(),
            R"({"type":"BIN","value":"00"})");
}

TEST_F(RegistrySectionTest, TakesMembersOfAPatchInTheirOrder) {
  EXPECT_EQ(Patched(R"({"HKLM/A/B":{},"HKLM/A":null,"HKLM/A/C":{}})").dump(), R"({"HKLM/A/C":{}})");
}

TEST_F(RegistrySectionTest, RefusesABadPatchWholeAndChangesNothing) {
  const std::string before = Patched(kExample).dump();
  const std::string values[] = {R"(1)",
                                R"({})",
                                R"({"type":"INT"})",
                                R"({"value":1})",
                                R"({"type":"INT","value":1,"more":1})",
                                R"({"type":"int","value":1})",
                                R"({"type":"INT","value":"1"})",
                                R"({"type":"INT","value":1.0})",
                                R"({"type":"INT","value":2147483648})",
                                R"({"type":"INT","value":-2147483649})",
                                R"({"type":"INT","value":18446744073709551615})",
                                R"({"type":"INT","value":true})",
                                R"({"type":"STR","value":1})",
                                R"({"type":"STR","value":"a\u0000"})",
                                R"({"type":"BIN","value":"ABC"})",
                                R"({"type":"BIN","value":"0g"})",
                                R"({"type":"BIN","value":[1]})",
                                R"({"type":7,"value":1})",
                                R"({"type":-1,"value":""})",
                                R"({"type":4294967296,"value":""})",
                                R"({"type":7.5,"value":""})",
                                R"({"type":true,"value":""})",
                                R"({"type":"BIN","value":")" + std::string(2 * 4097, '0') + "\"}",
                                R"({"type":"STR","value":")" + std::string(2048, 'x') + "\"}"};
  std::vector<std::string> patches = {"null",
                                      "[]",
                                      "1",
                                      R"({"HKXX/A":{}})",
                                      R"({"HKLM/":{}})",
                                      R"({"HKLM//A":{}})",
                                      R"({"HKLM":null})",
                                      R"({"HKLM/A":1})",
                                      R"({"HKLM/A":[]})",
                                      R"({"":{}})",
                                      R"({"HKLM/A\\B":{}})",
                                      R"({"HKLM/Software/X":{"Level":{"type":null}}})",
                                      R"({"HKLM/A":{"a\u0000":{"type":"INT","value":1}}})",
                                      R"({"HKLM/A":{")" + std::string(256, 'v') + R"(":{"type":"INT","value":1}}})"};
  for (const std::string& value : values) patches.push_back(R"({"HKLM/new":{},"HKLM/A":{"v":)" + value + "}}");
  for (const std::string& patch : patches) {
    EXPECT_THROW(Patched(patch.c_str()), StateError) << patch;
    EXPECT_EQ(Now().dump(), before) << patch;
  }
}

TEST_F(RegistrySectionTest, SaysWhichValueIsWrong) {
  try {
    Patched(R"({"HKLM/A":{"Level":{"type":"INT","value":"x"}}})");
    FAIL() << "taken";
  } catch (const StateError& error) {
    const std::string text = error.what();
    EXPECT_NE(text.find("registry: \"HKLM/A\": \"Level\": value: "), std::string::npos) << text;
  }
}

TEST_F(RegistrySectionTest, RefusesAPatchThatIsTooLarge) {
  Json values = Json::object();
  const std::string hex(2 * host::kLargestRegistryValue, '0');
  for (int number = 0; number < 4100; ++number) {
    values[std::to_string(number)] = Json{{"type", "BIN"}, {"value", hex}};
  }
  EXPECT_THROW(state_.Patch({{"registry", {{"HKLM/A", values}}}}), StateError);
  EXPECT_EQ(Now(), Json::object());
}

TEST_F(RegistrySectionTest, ResetBringsTheDefaultsBack) {
  Patched(kExample);
  state_.Reset();
  EXPECT_EQ(Now(), host::instrument::RegistryToJson(host::DefaultRegistry()));
  EXPECT_EQ(Now()["HKLM/Time Zones/Tokyo Standard Time"]["Std"]["value"], "Tokyo Standard Time");
}

TEST_F(RegistrySectionTest, RestoreLeavesNothingOfWhatWasThere) {
  state_.Reset();
  section_.Restore(Json::parse(kExample));
  EXPECT_EQ(Now().dump(), kExample);
  EXPECT_THROW(section_.Restore(Json::parse(R"({"HKLM/A":1})")), StateError);
  EXPECT_EQ(Now().dump(), kExample);
}

TEST_F(RegistrySectionTest, AChangeThatCannotBeKeptIsNotMade) {
  const std::string before = Patched(kExample).dump();
  Registry::Instance().SetKeeper([](const RegistryContent&) { return DWORD{ERROR_DISK_FULL}; });
  EXPECT_THROW(Patched(R"({"HKLM/A":{}})"), std::runtime_error);
  EXPECT_THROW(state_.Reset(), std::runtime_error);
  EXPECT_EQ(Now().dump(), before);
}

TEST_F(RegistrySectionTest, APatchIsOneChange) {
  int kept = 0;
  Registry::Instance().SetKeeper([&kept](const RegistryContent&) {
    ++kept;
    return DWORD{ERROR_SUCCESS};
  });
  Patched(kExample);
  EXPECT_EQ(kept, 1);
  Patched(kExample);
  EXPECT_EQ(kept, 1);
}

}  // namespace
