// COREDLL: power and the system's language, as the library calls it.
#include <windows.h>

#include "posix/calls/ce_calls.h"
#include "posix/calls/coredll_call.h"
#include "posix/system/identity.h"
#include "posix/system/power.h"

using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::kUnlisted;

extern "C" {

DWORD SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD options) {
  return CoreDllCall("SetSystemPowerState", kListed, FailsWith::kErrorCode, host::SetSystemPowerState, state_name,
                     state_flags, options);
}

void SystemIdleTimerReset(void) { CoreDllCall("SystemIdleTimerReset", kListed, host::SystemIdleTimerReset); }

LANGID GetSystemDefaultLangID(void) { return CoreDllCall("GetSystemDefaultLangID", kUnlisted, host::SystemLanguage); }

}  // extern "C"
