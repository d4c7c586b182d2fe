// COREDLL: power and the system's language, as the library calls it.
#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/calls/coredll_call.h"
#include "common/system/identity.h"
#include "common/system/power.h"

using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::kUnlisted;

extern "C" {

DWORD COREDLL(SetSystemPowerState)(LPCWSTR state_name, DWORD state_flags, DWORD options) {
  return CoreDllCall("SetSystemPowerState", kListed, FailsWith::kErrorCode, host::SetSystemPowerState, state_name,
                     state_flags, options);
}

void COREDLL(SystemIdleTimerReset)(void) { CoreDllCall("SystemIdleTimerReset", kListed, host::SystemIdleTimerReset); }

LANGID COREDLL(GetSystemDefaultLangID)(void) {
  return CoreDllCall("GetSystemDefaultLangID", kUnlisted, host::SystemLanguage);
}

}  // extern "C"
