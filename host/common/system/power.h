// The virtual instrument's power state. Nothing here touches the machine's own.
#ifndef QXHOST_COMMON_SYSTEM_POWER_H
#define QXHOST_COMMON_SYSTEM_POWER_H

#include <windows.h>

#include <cstdint>

namespace host {

constexpr std::uint32_t kPowerOn = 0x00010000;
constexpr std::uint32_t kPowerOff = 0x00020000;
constexpr std::uint32_t kPowerSuspend = 0x00200000;
constexpr std::uint32_t kPowerReset = 0x00800000;

/// The state last set; kPowerOn at start.
std::uint32_t PowerState();

/// Any state, from outside of the platform's call: the instrument's utility switches off, a test sets what it needs.
void RecordPowerState(std::uint32_t state);

/// Records on, suspend or reset (state_name must be null, options are accepted as they are).
/// Returns 0, or 87 for a named or any other state.
DWORD SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD options);

/// Keeps the instrument awake. The virtual instrument never falls asleep by itself, so the call log is all it leaves.
void SystemIdleTimerReset();

}  // namespace host

#endif
