// The virtual instrument's power state.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/system/power.h"

namespace {

TEST(Power, KnowsThreeStatesAndNoNames) {
  for (const DWORD state : {host::kPowerSuspend, host::kPowerReset, host::kPowerOn}) {
    EXPECT_EQ(SetSystemPowerState(nullptr, state, 0), 0u);
    EXPECT_EQ(host::PowerState(), state);
  }
  EXPECT_EQ(SetSystemPowerState(nullptr, 0x20000, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(SetSystemPowerState(TEXT("on"), host::kPowerOn, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(host::PowerState(), host::kPowerOn);
}

TEST(Power, CanBeRecordedAsOff) {
  host::RecordPowerState(host::kPowerOff);
  EXPECT_EQ(host::PowerState(), host::kPowerOff);
  EXPECT_EQ(SetSystemPowerState(nullptr, host::kPowerOn, 0), 0u);
  EXPECT_EQ(host::PowerState(), host::kPowerOn);
}

}  // namespace
