// The time zones the instrument knows, with their rules: what a fresh registry holds under "HKLM/Time Zones".
//
// The rows come from time_zones.csv beside this file and are built into the program. Its columns: the zone's number on
// the wire, its key's name, the three biases in minutes, the dates on which standard and daylight time begin (year,
// month, day of week, day, hour, minute, second, millisecond each; all 0: never), and the two names.
#ifndef QXHOST_COMMON_REGISTRY_TIME_ZONES_H
#define QXHOST_COMMON_REGISTRY_TIME_ZONES_H

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace host {

struct TimeZone {
  std::int32_t index;
  const WCHAR* key;
  LONG bias;
  LONG standard_bias;
  LONG daylight_bias;
  SYSTEMTIME standard_date;
  SYSTEMTIME daylight_date;
  const WCHAR* standard_name;
  const WCHAR* daylight_name;
};

struct TimeZoneRows {
  const TimeZone* first;
  std::size_t count;
  const TimeZone* begin() const { return first; }
  const TimeZone* end() const { return first + count; }
};

/// All rows, by rising index.
TimeZoneRows TimeZones();

/// A zone's rules as its key holds them in the value "TZI".
struct TimeZoneRecord {
  LONG bias;
  LONG standard_bias;
  LONG daylight_bias;
  SYSTEMTIME standard_date;
  SYSTEMTIME daylight_date;
};
static_assert(sizeof(TimeZoneRecord) == 44, "the platform's record");

}  // namespace host

#endif
