// The system library's battery query. Its ordinal and the event that announces a change differ between instruments:
// two settings of the build name them (QX_BATTERY_QUERY_ORDINAL, QX_BATTERY_EVENT_MASK; 0 = not there).
#ifndef QXCM_PLATFORM_BATTERY_QUERY_H
#define QXCM_PLATFORM_BATTERY_QUERY_H

#include <cstdint>

#include "platform/windows_api.h"

namespace qxcm {

/// In the order the system library has them. Levels in per cent; source: 0 left, 1 right, 2 external.
struct BatteryLevels {
  std::uint32_t left;
  std::uint32_t right;
  std::uint32_t external;
  std::uint32_t source;
};

/// The bit of the event mask that tells of a battery change; 0: no event does.
DWORD BatteryEventMask();

/// Fills the levels; leaves them alone when the library has no such query. The query is looked up by its ordinal when
/// it is first wanted, so that the library loads on instruments without it. Any thread.
void QueryBattery(BatteryLevels* levels);

}  // namespace qxcm

#endif
