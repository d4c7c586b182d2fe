// The time zones by their numbers on the wire; their rules stand in the platform's registry.
#ifndef QXCM_COMMANDS_SERVICES_TIME_ZONES_H
#define QXCM_COMMANDS_SERVICES_TIME_ZONES_H

#include <cstdint>
#include <optional>

#include "platform/text.h"
#include "platform/windows_api.h"

namespace qxcm {

/// One zone: its number and the name of its key under "Time Zones\".
struct TimeZone {
  std::int32_t index;
  LPCWSTR name;
};

/// The zones with their rows in ascending order of their numbers, for a walk over all.
struct TimeZoneTable {
  static const TimeZone* begin();
  static const TimeZone* end();
  /// Null for a number that no zone has.
  static const TimeZone* Find(std::int32_t index);
};

/// A zone's biases and the dates of its changes, as its registry value holds them.
struct TimeZoneRules {
  LONG bias;  // minutes, like the next two
  LONG standard_bias;
  LONG daylight_bias;
  SYSTEMTIME standard_date;
  SYSTEMTIME daylight_date;
};
static_assert(sizeof(TimeZoneRules) == 44, "the registry value's layout");

/// Nothing when the zone's key or its rules are missing.
std::optional<TimeZoneRules> ReadRules(const TimeZone& zone);
/// The same as the platform takes it, with the zone's names; a name that is missing or too long stays empty.
std::optional<TIME_ZONE_INFORMATION> ReadZone(const TimeZone& zone);
/// The name of the zone's standard time; empty when it is missing or longer than 63 characters.
WideText ReadStandardName(const TimeZone& zone);

}  // namespace qxcm

#endif
