// The registry's content at one moment: keys and values that never change once they are published.
//
// A change makes new keys along its way and shares all others with the content before. So whoever looks keeps what he
// looks at without a lock, and a change that is not to be is simply dropped.
#ifndef QXHOST_COMMON_REGISTRY_REGISTRY_TREE_H
#define QXHOST_COMMON_REGISTRY_REGISTRY_TREE_H

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/text/utf.h"

namespace host {

// The platform's limits. Names are counted in 16-bit units, values in bytes, levels from below a root.
constexpr std::size_t kLongestRegistryName = 255;
constexpr std::size_t kLargestRegistryValue = 4096;
constexpr std::size_t kRegistryLevels = 16;
/// This machine's own limit: the names and data of all, and kRegistryEntryBytes more for each key and value.
constexpr std::size_t kMostRegistryBytes = 16 << 20;
constexpr std::size_t kRegistryEntryBytes = 64;

struct RegistryValue {
  WideString name;  ///< empty: the key's default value
  DWORD type = 0;
  std::vector<BYTE> data;
};

struct RegistryKey {
  WideString name;
  std::uint64_t id = 0;  ///< the same as long as the key exists; never used again
  // By their names in upper case: names are told apart without regard to case, and keep the case they are given.
  std::map<WideString, std::shared_ptr<const RegistryKey>> keys;
  std::map<WideString, std::shared_ptr<const RegistryValue>> values;
};

struct RegistryContent {
  std::shared_ptr<const RegistryKey> top;  ///< nameless; its keys are the roots
  std::size_t bytes = 0;                   ///< see kMostRegistryBytes
};

/// The names from a root on: "HKLM", "Software", "X".
using RegistryPath = std::vector<WideString>;

/// The roots' names, in the order of their predefined handles from HKEY_CLASSES_ROOT on. A root's id is its place in
/// this list, from 1: roots are the same in every content.
constexpr const WCHAR* kRegistryRoots[] = {TEXT("HKCR"), TEXT("HKCU"), TEXT("HKLM"), TEXT("HKU")};

/// Whether a key or value may have this name: not too long, well-formed UTF-16, no zero.
bool GoodRegistryName(WideView name);
/// Whether a key may be at this path: a root first, good names without "\" below it, not too deep.
bool GoodRegistryPath(const RegistryPath& path);

/// A path as text (UTF-8): "HKLM/Software/X". A "/" inside a name is written "\/"; no key's name holds a "\".
std::string RegistryPathText(const RegistryPath& path);
/// The path back; nothing when the text names no path a key may be at.
std::optional<RegistryPath> ParseRegistryPath(std::string_view text);

/// The roots and nothing in them.
RegistryContent EmptyRegistry();
/// The roots and the time zones: how a fresh instrument's registry is.
RegistryContent DefaultRegistry();

/// Null when there is none. What is found lives as long as the content.
const RegistryKey* FindRegistryKey(const RegistryContent& content, const RegistryPath& path);
const RegistryKey* FindRegistryKey(RegistryContent&& content, const RegistryPath& path) = delete;
const RegistryValue* FindRegistryValue(const RegistryKey& key, WideView name);

/// Changes to a content, one after the other. Paths must be good ones.
class RegistryEdit {
 public:
  explicit RegistryEdit(RegistryContent content) : content_(std::move(content)) {}

  /// Makes the key and those above it where they are missing.
  void AddKey(const RegistryPath& path);
  /// Sets a value of that key, made where it is missing. A value that is there keeps its name's case.
  void SetValue(const RegistryPath& path, RegistryValue value);
  /// False when there is none.
  bool RemoveValue(const RegistryPath& path, WideView name);
  /// Removes the key with all that is under it. False when there is none, or for a root.
  bool RemoveKey(const RegistryPath& path);

  /// With the same `top` as given when nothing has changed.
  const RegistryContent& content() const { return content_; }

 private:
  RegistryKey& Own(std::shared_ptr<const RegistryKey>* slot);
  RegistryKey& OwnKey(const RegistryPath& path);

  RegistryContent content_;
  std::unordered_map<const RegistryKey*, RegistryKey*> own_;  // keys made by this edit: nobody else sees them yet
};

}  // namespace host

#endif
