#include "common/system/power.h"

#include <atomic>

namespace host {
namespace {

std::atomic<std::uint32_t> power_state{kPowerOn};

}  // namespace

std::uint32_t PowerState() { return power_state.load(); }

void RecordPowerState(std::uint32_t state) { power_state = state; }

DWORD SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD) {
  const bool known = state_flags == kPowerOn || state_flags == kPowerSuspend || state_flags == kPowerReset;
  if (state_name != nullptr || !known) return ERROR_INVALID_PARAMETER;
  power_state = state_flags;
  return ERROR_SUCCESS;
}

void SystemIdleTimerReset() {}

}  // namespace host
