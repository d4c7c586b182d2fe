// Loaded libraries are the system's: what the program has loaded, by its own ordinals. What has been registered comes
// before them: it makes a library known that no file holds, and takes one away that the process cannot unload.
#include "common/system/modules.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "common/calls/errors.h"
#include "common/disk/names.h"
#include "common/text/utf.h"

namespace host {
namespace {

struct Library {
  bool loaded = false;  ///< as the instrument sees it
  std::map<WORD, FARPROC> procedures;
};

struct Libraries {
  std::mutex mutex;
  // Those that have ever been registered, by upper-case file name; a library's address is its handle where the program
  // has loaded none of that name. Guarded by mutex.
  std::map<WideString, Library> known;
};

Libraries& TheLibraries() {
  static auto* libraries = new Libraries;  // threads may outlive the end of main
  return *libraries;
}

WideString FileName(WideView name) {
  WideString folded = FoldName(name);
  if (folded.find(TEXT('.')) == WideString::npos) folded += TEXT(".DLL");
  return folded;
}

HMODULE HandleOf(const WideString& name, const Library& library) {
  const HMODULE loaded = ::GetModuleHandleW(name.c_str());
  return loaded != nullptr ? loaded : reinterpret_cast<HMODULE>(const_cast<Library*>(&library));
}

const Library* FindKnown(const Libraries& libraries, HMODULE module) {
  for (const auto& [name, library] : libraries.known) {
    const bool itself = reinterpret_cast<HMODULE>(const_cast<Library*>(&library)) == module;
    if (itself || HandleOf(name, library) == module) return &library;
  }
  return nullptr;
}

bool IsSystemModule(HMODULE module) {
  constexpr DWORD kByAddress = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  HMODULE found = nullptr;
  return ::GetModuleHandleExW(kByAddress, reinterpret_cast<LPCWSTR>(module), &found) && found == module;
}

FARPROC SystemProcedure(HMODULE module, LPCWSTR name) {
  if (reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF) return ::GetProcAddress(module, reinterpret_cast<LPCSTR>(name));
  return ::GetProcAddress(module, WideToUtf8(name).c_str());
}

/// The registered procedure; nothing when the system is to be asked.
std::optional<FARPROC> KnownProcedure(const Library& library, LPCWSTR name) {
  const auto number = reinterpret_cast<std::uintptr_t>(name);
  const auto found = number <= 0xFFFF ? library.procedures.find(static_cast<WORD>(number)) : library.procedures.end();
  if (found == library.procedures.end()) return std::nullopt;
  return found->second;
}

}  // namespace

void RegisterProcedure(std::string_view module, WORD ordinal, FARPROC procedure) {
  Libraries& libraries = TheLibraries();
  const std::lock_guard<std::mutex> lock(libraries.mutex);
  Library& library = libraries.known[FileName(Utf8ToWide(module))];
  library.loaded = true;
  library.procedures[ordinal] = procedure;
}

void UnregisterModule(std::string_view module) {
  Libraries& libraries = TheLibraries();
  const std::lock_guard<std::mutex> lock(libraries.mutex);
  libraries.known[FileName(Utf8ToWide(module))] = {};
}

HMODULE GetModuleHandleW(LPCWSTR name) {
  if (name == nullptr) return Fail(ERROR_INVALID_PARAMETER, HMODULE{});
  const WideString file = FileName(name);
  if (!IsPlatformName(file)) return Fail(ERROR_MOD_NOT_FOUND, HMODULE{});
  Libraries& libraries = TheLibraries();
  const std::lock_guard<std::mutex> lock(libraries.mutex);
  const auto known = libraries.known.find(file);
  const HMODULE module = known == libraries.known.end() ? ::GetModuleHandleW(file.c_str())
                         : known->second.loaded         ? HandleOf(file, known->second)
                                                        : nullptr;
  return module != nullptr ? module : Fail(ERROR_MOD_NOT_FOUND, HMODULE{});
}

FARPROC GetProcAddressW(HMODULE module, LPCWSTR name) {
  Libraries& libraries = TheLibraries();
  const std::lock_guard<std::mutex> lock(libraries.mutex);
  const Library* known = FindKnown(libraries, module);
  const bool system = IsSystemModule(module);
  if (known != nullptr ? !known->loaded : !system) return Fail(ERROR_MOD_NOT_FOUND, FARPROC{});
  if (known != nullptr) {
    if (const auto procedure = KnownProcedure(*known, name)) return *procedure;
  }
  const FARPROC procedure = system ? SystemProcedure(module, name) : nullptr;
  return procedure != nullptr ? procedure : Fail(ERROR_PROC_NOT_FOUND, FARPROC{});
}

}  // namespace host
