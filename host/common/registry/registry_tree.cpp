#include "common/registry/registry_tree.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include "common/text/text.h"

namespace host {
namespace {

WideString Folded(WideView name) {
  WideString folded(name);
  for (WCHAR& unit : folded) unit = UpperCase(unit);
  return folded;
}

std::uint64_t NewId() {
  static std::atomic<std::uint64_t> last{std::size(kRegistryRoots)};
  return ++last;
}

std::shared_ptr<RegistryKey> MakeKey(WideString name, std::uint64_t id) {
  auto key = std::make_shared<RegistryKey>();
  key->name = std::move(name);
  key->id = id;
  return key;
}

std::size_t BytesOf(const RegistryValue& value) {
  return kRegistryEntryBytes + value.name.size() * sizeof(WCHAR) + value.data.size();
}

std::size_t BytesOfName(const WideString& name) { return kRegistryEntryBytes + name.size() * sizeof(WCHAR); }

std::size_t BytesOf(const RegistryKey& key) {
  std::size_t bytes = BytesOfName(key.name);
  for (const auto& value : key.values) bytes += BytesOf(*value.second);
  for (const auto& below : key.keys) bytes += BytesOf(*below.second);
  return bytes;
}

bool SameValue(const RegistryValue& left, const RegistryValue& right) {
  return left.type == right.type && left.data == right.data;
}

}  // namespace

RegistryContent EmptyRegistry() {
  const auto top = MakeKey({}, 0);
  for (std::size_t root = 0; root < std::size(kRegistryRoots); ++root) {
    top->keys[kRegistryRoots[root]] = MakeKey(kRegistryRoots[root], root + 1);
  }
  return {top, 0};
}

const RegistryKey* FindRegistryKey(const RegistryContent& content, const RegistryPath& path) {
  const RegistryKey* key = content.top.get();
  for (const WideString& name : path) {
    const auto found = key->keys.find(Folded(name));
    if (found == key->keys.end()) return nullptr;
    key = found->second.get();
  }
  return key;
}

const RegistryValue* FindRegistryValue(const RegistryKey& key, WideView name) {
  const auto found = key.values.find(Folded(name));
  return found == key.values.end() ? nullptr : found->second.get();
}

RegistryKey& RegistryEdit::Own(std::shared_ptr<const RegistryKey>* slot) {
  if (const auto known = own_.find(slot->get()); known != own_.end()) return *known->second;
  const auto copy = std::make_shared<RegistryKey>(**slot);
  own_[copy.get()] = copy.get();
  *slot = copy;
  return *copy;
}

RegistryKey& RegistryEdit::OwnKey(const RegistryPath& path) {
  RegistryKey* key = &Own(&content_.top);
  for (const WideString& name : path) {
    std::shared_ptr<const RegistryKey>& below = key->keys[Folded(name)];
    if (below == nullptr) {
      below = MakeKey(name, NewId());
      content_.bytes += BytesOfName(name);
    }
    key = &Own(&below);
  }
  return *key;
}

void RegistryEdit::AddKey(const RegistryPath& path) {
  if (FindRegistryKey(content_, path) == nullptr) OwnKey(path);
}

void RegistryEdit::SetValue(const RegistryPath& path, RegistryValue value) {
  const RegistryKey* key = FindRegistryKey(content_, path);
  const RegistryValue* old = key == nullptr ? nullptr : FindRegistryValue(*key, value.name);
  if (old != nullptr && SameValue(*old, value)) return;
  if (old != nullptr) {
    value.name = old->name;
    content_.bytes -= BytesOf(*old);
  }
  content_.bytes += BytesOf(value);
  WideString folded = Folded(value.name);
  OwnKey(path).values[std::move(folded)] = std::make_shared<const RegistryValue>(std::move(value));
}

bool RegistryEdit::RemoveValue(const RegistryPath& path, WideView name) {
  const RegistryKey* key = FindRegistryKey(content_, path);
  const RegistryValue* value = key == nullptr ? nullptr : FindRegistryValue(*key, name);
  if (value == nullptr) return false;
  content_.bytes -= BytesOf(*value);
  OwnKey(path).values.erase(Folded(name));
  return true;
}

bool RegistryEdit::RemoveKey(const RegistryPath& path) {
  const RegistryKey* key = FindRegistryKey(content_, path);
  if (key == nullptr || path.size() < 2) return false;
  content_.bytes -= BytesOf(*key);
  OwnKey(RegistryPath(path.begin(), path.end() - 1)).keys.erase(Folded(path.back()));
  return true;
}

}  // namespace host
