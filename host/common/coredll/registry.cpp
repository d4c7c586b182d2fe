// COREDLL: the registry, as the library calls it.
#include <windows.h>

#include "common/calls/coredll_call.h"
#include "common/registry/registry_calls.h"

namespace {

using host::CallValues;
using host::FailsWith;
using host::kListed;

/// One call: it works on the key that `key` and `path` name together.
template <class... Parameters, class... Arguments>
LONG RegistryCall(const char* name, HKEY key, LPCWSTR path, LONG (*real)(Parameters...),
                  const Arguments&... arguments) {
  const auto args = [&] {
    CallValues values;
    (host::AppendArgument(arguments, &values), ...);
    return values;
  };
  return host::Entry(
      "COREDLL", name, kListed, args, [&] { return real(arguments...); }, FailsWith::kErrorCode,
      [&] { return host::RegistrySubject(key, path); });
}

}  // namespace

extern "C" {

LONG COREDLL(RegOpenKeyExW)(HKEY key, LPCWSTR path, DWORD options, DWORD access, PHKEY opened) {
  return RegistryCall("RegOpenKeyExW", key, path, host::RegOpenKeyExW, key, path, options, access, opened);
}

LONG COREDLL(RegCreateKeyExW)(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class, DWORD options, DWORD access,
                              LPSECURITY_ATTRIBUTES security, PHKEY opened, LPDWORD disposition) {
  return RegistryCall("RegCreateKeyExW", key, path, host::RegCreateKeyExW, key, path, reserved,
                      static_cast<LPCWSTR>(key_class), options, access, security, opened, disposition);
}

LONG COREDLL(RegCloseKey)(HKEY key) { return RegistryCall("RegCloseKey", key, nullptr, host::RegCloseKey, key); }

LONG COREDLL(RegQueryValueExW)(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size) {
  return RegistryCall("RegQueryValueExW", key, nullptr, host::RegQueryValueExW, key, name, reserved, type, data, size);
}

LONG COREDLL(RegSetValueExW)(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  return RegistryCall("RegSetValueExW", key, nullptr, host::RegSetValueExW, key, name, reserved, type, data, size);
}

LONG COREDLL(RegDeleteValueW)(HKEY key, LPCWSTR name) {
  return RegistryCall("RegDeleteValueW", key, nullptr, host::RegDeleteValueW, key, name);
}

LONG COREDLL(RegDeleteKeyW)(HKEY key, LPCWSTR path) {
  return RegistryCall("RegDeleteKeyW", key, path, host::RegDeleteKeyW, key, path);
}

}  // extern "C"
