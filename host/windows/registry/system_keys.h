// Keys of the system's registry and the content of ours: reading one as the other, and making the differences.
#ifndef QXHOST_WINDOWS_REGISTRY_SYSTEM_KEYS_H
#define QXHOST_WINDOWS_REGISTRY_SYSTEM_KEYS_H

#include <windows.h>

#include <vector>

#include "common/registry/registry_tree.h"

namespace host {

/// The names of the keys right below this one.
std::vector<WideString> SystemKeyNames(HKEY key);

/// Makes or opens a volatile key.
LONG MakeSystemKey(HKEY base, const WideString& path, HKEY* key);

/// Adds the key's values and all keys below it, with theirs, to the content at this path.
void ReadSystemKey(HKEY key, const RegistryPath& path, RegistryEdit* content);

/// Makes all that differs between two contents of a key. Returns 0, or the first error; the rest is then as it was.
DWORD ChangeSystemKey(HKEY key, const RegistryKey& before, const RegistryKey& after);

/// A value's type and data. Returns the system's error code.
LONG ReadSystemValue(HKEY key, LPCWSTR name, RegistryValue* value);

}  // namespace host

#endif
