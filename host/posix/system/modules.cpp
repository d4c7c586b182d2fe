#include "common/system/modules.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "common/calls/errors.h"
#include "common/text/text.h"
#include "common/text/utf.h"

namespace host {
namespace {

using Procedures = std::map<WORD, FARPROC>;

struct Modules {
  std::mutex mutex;
  // By upper-case file name; the address of its procedures is a library's handle. Guarded by mutex.
  std::map<std::u16string, std::unique_ptr<Procedures>> loaded;
};

Modules& TheModules() {
  static auto* modules = new Modules;  // threads may outlive the end of main
  return *modules;
}

std::u16string FileName(std::u16string name) {
  for (char16_t& unit : name) unit = UpperCase(unit);
  if (name.find(u'.') == std::u16string::npos) name += u".DLL";
  return name;
}

const Procedures* Find(const Modules& modules, HMODULE module) {
  for (const auto& [name, procedures] : modules.loaded) {
    if (reinterpret_cast<HMODULE>(procedures.get()) == module) return procedures.get();
  }
  return nullptr;
}

}  // namespace

void RegisterProcedure(std::string_view module, WORD ordinal, FARPROC procedure) {
  Modules& modules = TheModules();
  const std::lock_guard<std::mutex> lock(modules.mutex);
  auto& procedures = modules.loaded[FileName(Utf8ToWide(module))];
  if (procedures == nullptr) procedures = std::make_unique<Procedures>();
  (*procedures)[ordinal] = procedure;
}

void UnregisterModule(std::string_view module) {
  Modules& modules = TheModules();
  const std::lock_guard<std::mutex> lock(modules.mutex);
  modules.loaded.erase(FileName(Utf8ToWide(module)));
}

HMODULE GetModuleHandleW(LPCWSTR name) {
  if (name == nullptr) return Fail(ERROR_INVALID_PARAMETER, HMODULE{});
  Modules& modules = TheModules();
  const std::lock_guard<std::mutex> lock(modules.mutex);
  const auto found = modules.loaded.find(FileName(name));
  if (found == modules.loaded.end()) return Fail(ERROR_MOD_NOT_FOUND, HMODULE{});
  return reinterpret_cast<HMODULE>(found->second.get());
}

FARPROC GetProcAddressW(HMODULE module, LPCWSTR name) {
  Modules& modules = TheModules();
  const std::lock_guard<std::mutex> lock(modules.mutex);
  const Procedures* procedures = Find(modules, module);
  if (procedures == nullptr) return Fail(ERROR_MOD_NOT_FOUND, FARPROC{});
  const auto number = reinterpret_cast<std::uintptr_t>(name);
  const auto found = number <= 0xFFFF ? procedures->find(static_cast<WORD>(number)) : procedures->end();
  return found == procedures->end() ? Fail(ERROR_PROC_NOT_FOUND, FARPROC{}) : found->second;
}

}  // namespace host
