#include "windows/registry/private_key.h"

#include <array>
#include <cstdint>
#include <cwchar>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include "common/registry/registry_tree.h"
#include "windows/registry/system_keys.h"

namespace host {
namespace {

const WideString kAllProcesses = TEXT("Software\\QXHost");

/// When the process began; 0 when there is none of that number.
std::uint64_t StartOf(DWORD process) {
  const HANDLE handle = ::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, process);
  if (handle == nullptr) return 0;
  FILETIME start = {}, others[3];
  const bool runs = ::WaitForSingleObject(handle, 0) != WAIT_OBJECT_0;
  ::GetProcessTimes(handle, &start, &others[0], &others[1], &others[2]);
  ::CloseHandle(handle);
  return runs ? std::uint64_t{start.dwHighDateTime} << 32 | start.dwLowDateTime : 0;
}

// Numbers of processes come again, but not together with the time.
WideString NameFor(DWORD process, std::uint64_t start) {
  return std::to_wstring(process) + TEXT('-') + std::to_wstring(start);
}

bool IsLeft(const WideString& name) {
  const auto process = static_cast<DWORD>(std::wcstoul(name.c_str(), nullptr, 10));
  const std::uint64_t start = StartOf(process);
  return start == 0 || NameFor(process, start) != name;
}

/// Made at first use, deleted when the process ends.
class PrivateKey {
 public:
  PrivateKey() {
    RemoveLeftPrivateKeys();
    Expect(MakeSystemKey(HKEY_CURRENT_USER, PrivateKeyPath(), &key_));
    for (std::size_t place = 0; place < roots_.size(); ++place) {
      Expect(MakeSystemKey(key_, kRegistryRoots[place], &roots_[place]));
    }
    const DWORD error = ChangeSystemKey(key_, *EmptyRegistry().top, *DefaultRegistry().top);
    Expect(static_cast<LONG>(error));
  }
  PrivateKey(const PrivateKey&) = delete;
  PrivateKey& operator=(const PrivateKey&) = delete;
  ~PrivateKey() { ::RegDeleteTreeW(HKEY_CURRENT_USER, PrivateKeyPath().c_str()); }

  HKEY root(std::size_t place) const { return roots_[place]; }

 private:
  static void Expect(LONG error) {
    if (error != 0) throw std::system_error(error, std::system_category(), "registry");
  }

  HKEY key_ = nullptr;
  std::array<HKEY, std::size(kRegistryRoots)> roots_ = {};
};

}  // namespace

const WideString& PrivateKeyPath() {
  static const DWORD process = ::GetCurrentProcessId();
  static const auto* path = new WideString(kAllProcesses + TEXT('\\') + NameFor(process, StartOf(process)));
  return *path;
}

HKEY SystemRoot(std::size_t place) {
  static const PrivateKey key;
  return key.root(place);
}

void RemoveLeftPrivateKeys() {
  HKEY all = nullptr;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, kAllProcesses.c_str(), 0, KEY_ALL_ACCESS, &all) != 0) return;
  for (const WideString& name : SystemKeyNames(all)) {
    if (IsLeft(name)) ::RegDeleteTreeW(all, name.c_str());
  }
  ::RegCloseKey(all);
}

}  // namespace host
