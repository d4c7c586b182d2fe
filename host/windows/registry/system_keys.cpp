#include "windows/registry/system_keys.h"

#include <utility>

namespace host {
namespace {

constexpr DWORD kNameSize = kLongestRegistryName + 1;

/// An open key of the system's, closed at the end.
class OpenSystemKey {
 public:
  OpenSystemKey() = default;
  OpenSystemKey(const OpenSystemKey&) = delete;
  OpenSystemKey& operator=(const OpenSystemKey&) = delete;
  ~OpenSystemKey() {
    if (key_ != nullptr) ::RegCloseKey(key_);
  }
  HKEY get() const { return key_; }
  HKEY* place() { return &key_; }

 private:
  HKEY key_ = nullptr;
};

/// The value of this index; false when there is none.
bool ReadValueAt(HKEY key, DWORD index, std::vector<BYTE>* room, RegistryValue* value) {
  WCHAR name[kNameSize];
  DWORD name_size = kNameSize;
  auto size = static_cast<DWORD>(room->size());
  LONG error = ::RegEnumValueW(key, index, name, &name_size, nullptr, &value->type, room->data(), &size);
  if (error == ERROR_MORE_DATA && size > room->size()) {
    room->resize(size);  // the system may put a zero behind a text
    return ReadValueAt(key, index, room, value);
  }
  value->name.assign(name, error == 0 ? name_size : 0);
  value->data.assign(room->data(), room->data() + (error == 0 ? size : 0));
  return error == 0;
}

// A copy with something behind it that is no zero: the system would take one for the end of a text.
LONG SetValue(HKEY key, const RegistryValue& value) {
  std::vector<BYTE> data = value.data;
  data.insert(data.end(), 2 * sizeof(WCHAR), 0xFF);
  const auto size = static_cast<DWORD>(value.data.size());
  return ::RegSetValueExW(key, value.name.c_str(), 0, value.type, data.data(), size);
}

bool SameValue(const RegistryValue& one, const RegistryValue& other) {
  return one.name == other.name && one.type == other.type && one.data == other.data;
}

/// The first error that the calls for each of these have; 0 when all have gone well.
template <class Map, class Call>
DWORD ForEach(const Map& map, const Call& call) {
  for (const auto& [folded, item] : map) {
    if (const LONG error = call(folded, item)) return static_cast<DWORD>(error);
  }
  return ERROR_SUCCESS;
}

template <class Map>
auto Find(const Map& map, const WideString& folded) {
  const auto found = map.find(folded);
  return found == map.end() ? typename Map::mapped_type() : found->second;
}

DWORD ChangeValues(HKEY key, const RegistryKey& before, const RegistryKey& after) {
  const DWORD error = ForEach(before.values, [&](const WideString& folded, const auto& value) {
    const auto now = Find(after.values, folded);
    const bool stays = now != nullptr && now->name == value->name;
    return stays ? LONG{0} : ::RegDeleteValueW(key, value->name.c_str());
  });
  if (error != ERROR_SUCCESS) return error;
  return ForEach(after.values, [&](const WideString& folded, const auto& value) {
    const auto old = Find(before.values, folded);
    return old != nullptr && SameValue(*old, *value) ? LONG{0} : SetValue(key, *value);
  });
}

LONG ChangeKeyBelow(HKEY key, const RegistryKey& before, const RegistryKey& after) {
  OpenSystemKey below;
  if (const LONG error = MakeSystemKey(key, after.name, below.place())) return error;
  return static_cast<LONG>(ChangeSystemKey(below.get(), before, after));
}

DWORD ChangeKeys(HKEY key, const RegistryKey& before, const RegistryKey& after) {
  const DWORD error = ForEach(before.keys, [&](const WideString& folded, const auto& below) {
    const auto now = Find(after.keys, folded);
    const bool stays = now != nullptr && now->name == below->name;
    return stays ? LONG{0} : ::RegDeleteTreeW(key, below->name.c_str());
  });
  if (error != ERROR_SUCCESS) return error;
  static const RegistryKey empty;
  return ForEach(after.keys, [&](const WideString& folded, const auto& below) {
    const auto old = Find(before.keys, folded);
    const bool known = old != nullptr && old->name == below->name;
    return old == below ? LONG{0} : ChangeKeyBelow(key, known ? *old : empty, *below);
  });
}

}  // namespace

std::vector<WideString> SystemKeyNames(HKEY key) {
  std::vector<WideString> names;
  WCHAR name[kNameSize];
  for (DWORD size = kNameSize;; size = kNameSize) {
    const auto index = static_cast<DWORD>(names.size());
    if (::RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) != 0) return names;
    names.emplace_back(name, size);
  }
}

LONG MakeSystemKey(HKEY base, const WideString& path, HKEY* key) {
  return ::RegCreateKeyExW(base, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, key, nullptr);
}

LONG ReadSystemValue(HKEY key, LPCWSTR name, RegistryValue* value) {
  DWORD size = 0;
  if (const LONG error = ::RegQueryValueExW(key, name, nullptr, &value->type, nullptr, &size)) return error;
  value->data.resize(size + sizeof(WCHAR));  // the system may put a zero behind a text
  size = static_cast<DWORD>(value->data.size());
  const LONG error = ::RegQueryValueExW(key, name, nullptr, &value->type, value->data.data(), &size);
  value->data.resize(error == 0 ? size : 0);
  return error;
}

void ReadSystemKey(HKEY key, const RegistryPath& path, RegistryEdit* content) {
  if (path.size() > 1) content->AddKey(path);
  std::vector<BYTE> room(kLargestRegistryValue + sizeof(WCHAR));
  RegistryValue value;
  for (DWORD index = 0; ReadValueAt(key, index, &room, &value); ++index) content->SetValue(path, value);
  for (const WideString& name : SystemKeyNames(key)) {
    OpenSystemKey below;
    if (::RegOpenKeyExW(key, name.c_str(), 0, KEY_READ, below.place()) != 0) continue;
    RegistryPath longer = path;
    longer.push_back(name);
    ReadSystemKey(below.get(), longer, content);
  }
}

DWORD ChangeSystemKey(HKEY key, const RegistryKey& before, const RegistryKey& after) {
  const DWORD error = ChangeValues(key, before, after);
  return error == ERROR_SUCCESS ? ChangeKeys(key, before, after) : error;
}

}  // namespace host
