// The registry against a model that is nothing but a list of values, over any changes; and its JSON over any bytes.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <map>
#include <nlohmann/json.hpp>

#include "common/registry/registry_tree.h"
#include "instrument/registry_json.h"

namespace {

using host::RegistryContent;
using host::RegistryEdit;
using host::RegistryPath;
using host::instrument::Json;

/// Keys by their path in small letters, each with its values by name: last bytes written.
using Model = std::map<std::string, std::map<std::string, std::vector<BYTE>>>;

const RegistryPath kPaths[] = {
    {u"HKLM", u"a"},  {u"HKLM", u"A", u"b"}, {u"HKLM", u"a", u"B", u"c"}, {u"HKLM", u"a", u"d"},
    {u"HKLM", u"ab"}, {u"HKCU", u"A"},       {u"HKCU", u"a/b"},           {u"HKCU", u"a/b", u"\u00E9/"},
    {u"HKU"}};
const char16_t* const kNames[] = {u"", u"x", u"X", u"y/z"};

std::string Small(std::string text) {
  for (char& letter : text) letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
  return text;
}
std::string Place(const RegistryPath& path) { return Small(host::RegistryPathText(path)); }
std::string Name(std::u16string_view name) { return Small(std::string(name.begin(), name.end())); }

void AddWithParents(RegistryPath path, Model* model) {
  for (; path.size() > 1; path.pop_back()) (*model)[Place(path)];
  (*model)[Place(path)];
}

bool IsUnder(const std::string& key, const std::string& top) { return key == top || key.rfind(top + "/", 0) == 0; }

bool RemoveFrom(Model* model, const RegistryPath& path) {
  if (path.size() == 1 || model->count(Place(path)) == 0) return false;
  for (auto key = model->begin(); key != model->end();) {
    key = IsUnder(key->first, Place(path)) ? model->erase(key) : std::next(key);
  }
  return true;
}

void Collect(const host::RegistryKey& key, RegistryPath* path, Model* model) {
  path->push_back(key.name);
  auto& values = (*model)[Place(*path)];
  for (const auto& value : key.values) values[Name(value.second->name)] = value.second->data;
  for (const auto& below : key.keys) Collect(*below.second, path, model);
  path->pop_back();
}

Model Collected(const RegistryContent& content) {
  Model model;
  RegistryPath path;
  for (const auto& root : content.top->keys) Collect(*root.second, &path, &model);
  return model;
}

/// One change to both; what they say of it must be the same.
void ChangeBoth(RegistryEdit* edit, Model* model) {
  const RegistryPath& path = kPaths[*rc::gen::inRange<std::size_t>(0, std::size(kPaths))];
  const std::u16string name = kNames[*rc::gen::inRange<std::size_t>(0, std::size(kNames))];
  const auto key = model->find(Place(path));
  switch (*rc::gen::inRange(0, 5)) {
    case 0:
      edit->AddKey(path);
      return AddWithParents(path, model);
    case 1:
      RC_ASSERT(edit->RemoveKey(path) == RemoveFrom(model, path));
      return;
    case 2:
      RC_ASSERT(edit->RemoveValue(path, name) == (key != model->end() && key->second.erase(Name(name)) == 1));
      return;
    default:
      const auto data = *rc::gen::arbitrary<std::vector<BYTE>>();
      edit->SetValue(path, {name, REG_BINARY, data});
      AddWithParents(path, model);
      (*model)[Place(path)][Name(name)] = data;
  }
}

TEST(RegistryModelTest, AnyChangesLeaveWhatAPlainListOfValuesWouldHold) {
  EXPECT_TRUE(rc::check([] {
    RegistryContent content = host::EmptyRegistry();
    Model model = Collected(content);
    for (int round = *rc::gen::inRange(1, 8); round > 0; --round) {
      const Model before = Collected(content);
      RegistryEdit edit(content);
      for (int change = *rc::gen::inRange(0, 10); change > 0; --change) ChangeBoth(&edit, &model);
      RC_ASSERT(Collected(content) == before);  // nobody sees an edit before it is done
      content = edit.content();
      RC_ASSERT(Collected(content) == model);
    }
    RegistryEdit edit(content);
    for (const RegistryPath& path : kPaths) edit.RemoveKey(path);
    for (const char16_t* name : kNames) edit.RemoveValue({u"HKU"}, name);
    RC_ASSERT(edit.content().bytes == 0u);
  }));
}

TEST(RegistryModelTest, JsonLosesNothing) {
  EXPECT_TRUE(rc::check([] {
    RegistryEdit edit(host::EmptyRegistry());
    for (int count = *rc::gen::inRange(0, 20); count > 0; --count) {
      const RegistryPath& path = kPaths[*rc::gen::inRange<std::size_t>(0, std::size(kPaths))];
      const DWORD type = *rc::gen::element<DWORD>(0, REG_SZ, 2, REG_BINARY, REG_DWORD, 0xFFFFFFFF);
      edit.SetValue(path, {kNames[*rc::gen::inRange<std::size_t>(0, std::size(kNames))], type,
                           *rc::gen::arbitrary<std::vector<BYTE>>()});
    }
    const Json json = host::instrument::RegistryToJson(edit.content());
    const RegistryContent again = host::instrument::MergeRegistry(host::EmptyRegistry(), Json::parse(json.dump()));
    RC_ASSERT(host::instrument::RegistryToJson(again) == json);
    RC_ASSERT(Collected(again) == Collected(edit.content()));
    RC_ASSERT(again.bytes == edit.content().bytes);
  }));
}

}  // namespace
