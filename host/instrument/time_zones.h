// The time zones that a fresh instrument knows: its defaults for the registry, by wire index and key name.
#ifndef QXHOST_INSTRUMENT_TIME_ZONES_H
#define QXHOST_INSTRUMENT_TIME_ZONES_H

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace host::instrument {

struct TimeZoneRow {
  int index;                    ///< the zone's number on the wire
  std::string key;              ///< its key below "Time Zones"
  TIME_ZONE_INFORMATION rules;  ///< names included
};

/// In ascending order of index.
const std::vector<TimeZoneRow>& TimeZones();

/// The rules of the zone of exactly this key name.
std::optional<TIME_ZONE_INFORMATION> FindTimeZone(const std::string& key);

}  // namespace host::instrument

#endif
