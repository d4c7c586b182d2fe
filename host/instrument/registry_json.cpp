#include "instrument/registry_json.h"

#include <nlohmann/json.hpp>

#include "common/text/utf.h"
#include "instrument/registry_value_json.h"

namespace host::instrument {
namespace {

/// Adds a member that is known to be new: the object need not be searched for it, however large it is.
void Append(Json* object, std::string name, Json value) {
  using Members = std::vector<std::pair<const std::string, Json>>;
  static_cast<Members&>(object->get_ref<Json::object_t&>()).emplace_back(std::move(name), std::move(value));
}

Json ValuesToJson(const RegistryKey& key) {
  Json values = Json::object();
  for (const auto& named : key.values) {
    Append(&values, WideToUtf8(named.second->name), RegistryValueToJson(*named.second));
  }
  return values;
}

void AppendKeys(const RegistryKey& key, RegistryPath* path, Json* keys) {
  path->push_back(key.name);
  const bool empty_root = path->size() == 1 && key.values.empty();
  if (!empty_root && (!key.values.empty() || key.keys.empty())) {
    Append(keys, RegistryPathText(*path), ValuesToJson(key));
  }
  for (const auto& below : key.keys) AppendKeys(*below.second, path, keys);
  path->pop_back();
}

void MergeValue(const RegistryPath& path, const std::string& name, const Json& patch, RegistryEdit* edit) {
  const WideString wide = Utf8ToWide(name);
  if (!GoodRegistryName(wide)) throw StateError("no name for a value");
  if (patch.is_null()) {
    edit->RemoveValue(path, wide);
    return;
  }
  const RegistryKey* key = FindRegistryKey(edit->content(), path);
  const RegistryValue* before = key == nullptr ? nullptr : FindRegistryValue(*key, wide);
  Json merged = before == nullptr ? Json::object() : RegistryValueToJson(*before);
  merged.merge_patch(patch);
  RegistryValue value = RegistryValueFromJson(merged);
  if (value.data.size() > kLargestRegistryValue) throw StateError("more than 4096 bytes");
  value.name = wide;
  edit->SetValue(path, std::move(value));
}

void MergeKey(const std::string& name, const Json& patch, RegistryEdit* edit) {
  const std::optional<RegistryPath> path = ParseRegistryPath(name);
  if (!path) throw StateError("no key can be there");
  if (patch.is_null()) {
    if (path->size() == 1) throw StateError("a root cannot be deleted");
    edit->RemoveKey(*path);
    return;
  }
  if (!patch.is_object()) throw StateError("an object is expected");
  edit->AddKey(*path);
  for (const auto& member : patch.items()) {
    try {
      MergeValue(*path, member.key(), member.value(), edit);
    } catch (const StateError& error) {
      throw StateError("\"" + member.key() + "\": " + error.what());
    }
  }
}

}  // namespace

Json RegistryToJson(const RegistryContent& content) {
  Json keys = Json::object();
  RegistryPath path;
  for (const auto& root : content.top->keys) AppendKeys(*root.second, &path, &keys);
  return keys;
}

RegistryContent MergeRegistry(const RegistryContent& content, const Json& patch) {
  if (!patch.is_object()) throw StateError("registry: an object is expected");
  RegistryEdit edit(content);
  for (const auto& member : patch.items()) {
    try {
      MergeKey(member.key(), member.value(), &edit);
    } catch (const StateError& error) {
      throw StateError("registry: \"" + member.key() + "\": " + error.what());
    }
  }
  if (edit.content().bytes > kMostRegistryBytes) throw StateError("registry: too large");
  return edit.content();
}

}  // namespace host::instrument
