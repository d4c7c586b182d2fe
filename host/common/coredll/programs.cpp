// COREDLL: programs and loaded libraries, as the library calls them.
#include "common/system/programs.h"

#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/calls/coredll_call.h"
#include "common/system/modules.h"

using host::Buffer;
using host::CallValues;
using host::CoreDllCall;
using host::kListed;
using host::kUnlisted;

extern "C" {

BOOL COREDLL(CreateProcessW)(LPCWSTR program, LPWSTR command_line, LPSECURITY_ATTRIBUTES process_security,
                             LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                             LPCWSTR folder, LPSTARTUPINFOW start, LPPROCESS_INFORMATION process) {
  return CoreDllCall("CreateProcessW", kListed, host::CreateProcessW, program, LPCWSTR{command_line}, process_security,
                     thread_security, inherit, flags, Buffer(environment), folder, start, process);
}

HMODULE COREDLL(GetModuleHandleW)(LPCWSTR name) {
  return CoreDllCall("GetModuleHandleW", kUnlisted, host::GetModuleHandleW, name);
}

// The name is a text or, when it is small, a number.
FARPROC COREDLL(GetProcAddressW)(HMODULE module, LPCWSTR name) {
  const auto args = [=] {
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    CallValues values = {static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(module))};
    if (number <= 0xFFFF) {
      values.emplace_back(static_cast<std::int64_t>(number));
    } else {
      values.emplace_back(host::WideToUtf8(name));
    }
    return values;
  };
  return host::Entry("COREDLL", "GetProcAddressW", kUnlisted, args,
                     [=] { return host::GetProcAddressW(module, name); });
}

}  // extern "C"
