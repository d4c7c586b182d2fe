#include "instrument/time_zones.h"

#include <iterator>

#include "posix/text/utf.h"

namespace host::instrument {
namespace {

constexpr LONG kDaylightBias = -60;

/// A yearly change: the nth such day of the week (0 Sunday) of a month, 5 the last; all 0 for none.
struct Change {
  WORD month, nth, day_of_week, hour;
};
struct Rules {
  Change daylight, standard;
};
constexpr Rules kNone = {};
constexpr Rules kNorthAmerica = {{3, 2, 0, 2}, {11, 1, 0, 2}};
constexpr Rules kMexico = {{4, 1, 0, 2}, {10, 5, 0, 2}};
constexpr Rules kChile = {{9, 2, 0, 0}, {4, 1, 0, 0}};
constexpr Rules kMidAtlantic = {{3, 5, 0, 2}, {9, 5, 0, 2}};
constexpr Rules kAzores = {{3, 5, 0, 0}, {10, 5, 0, 1}};
constexpr Rules kWestEurope = {{3, 5, 0, 1}, {10, 5, 0, 2}};
constexpr Rules kEurope = {{3, 5, 0, 2}, {10, 5, 0, 3}};
constexpr Rules kEastEurope = {{3, 5, 0, 3}, {10, 5, 0, 4}};
constexpr Rules kIsrael = {{3, 5, 5, 2}, {10, 5, 0, 2}};
constexpr Rules kAustralia = {{10, 1, 0, 2}, {4, 1, 0, 3}};
constexpr Rules kNewZealand = {{9, 5, 0, 2}, {4, 1, 0, 3}};

/// The standard time's name is the key; the daylight time's says "Daylight" for "Standard".
struct Zone {
  int index;
  LONG bias;  // minutes west of UTC
  const char* key;
  Rules rules;
};
constexpr Zone kZones[] = {
    {0, 720, "Dateline Standard Time", kNone},
    {1, -780, "Samoa Standard Time", kNone},
    {2, 600, "Hawaiian Standard Time", kNone},
    {3, 540, "Alaskan Standard Time", kNorthAmerica},
    {4, 480, "Pacific Standard Time", kNorthAmerica},
    {10, 420, "Mountain Standard Time", kNorthAmerica},
    {13, 420, "Mexico Standard Time 2", kMexico},
    {15, 420, "US Mountain Standard Time", kNone},
    {20, 360, "Central Standard Time", kNorthAmerica},
    {25, 360, "Canada Central Standard Time", kNone},
    {30, 360, "Mexico Standard Time", kMexico},
    {33, 360, "Central America Standard Time", kNone},
    {35, 300, "Eastern Standard Time", kNorthAmerica},
    {40, 300, "US Eastern Standard Time", kNorthAmerica},
    {45, 300, "SA Pacific Standard Time", kNone},
    {50, 240, "Atlantic Standard Time", kNorthAmerica},
    {55, 240, "SA Western Standard Time", kNone},
    {56, 240, "Pacific SA Standard Time", kChile},
    {60, 210, "Newfoundland Standard Time", kNorthAmerica},
    {65, 180, "E. South America Standard Time", kNone},
    {70, 180, "SA Eastern Standard Time", kNone},
    {73, 120, "Greenland Standard Time", kNone},
    {75, 120, "Mid-Atlantic Standard Time", kMidAtlantic},
    {80, 60, "Azores Standard Time", kAzores},
    {83, 60, "Cape Verde Standard Time", kNone},
    {85, 0, "GMT Standard Time", kWestEurope},
    {90, 0, "Greenwich Standard Time", kNone},
    {95, -60, "Central Europe Standard Time", kEurope},
    {100, -60, "Central European Standard Time", kEurope},
    {105, -60, "Romance Standard Time", kEurope},
    {110, -60, "W. Europe Standard Time", kEurope},
    {113, -60, "W. Central Africa Standard Time", kNone},
    {115, -120, "E. Europe Standard Time", kEurope},
    {120, -120, "Egypt Standard Time", kNone},
    {125, -120, "FLE Standard Time", kEastEurope},
    {130, -120, "GTB Standard Time", kEastEurope},
    {135, -120, "Israel Standard Time", kIsrael},
    {140, -120, "South Africa Standard Time", kNone},
    {145, -180, "Russian Standard Time", kNone},
    {150, -180, "Arab Standard Time", kNone},
    {155, -180, "E. Africa Standard Time", kNone},
    {158, -180, "Arabic Standard Time", kNone},
    {160, -210, "Iran Standard Time", kNone},
    {165, -240, "Arabian Standard Time", kNone},
    {170, -240, "Caucasus Standard Time", kNone},
    {175, -270, "Afghanistan Standard Time", kNone},
    {180, -300, "Ekaterinburg Standard Time", kNone},
    {185, -300, "West Asia Standard Time", kNone},
    {190, -330, "India Standard Time", kNone},
    {193, -345, "Nepal Standard Time", kNone},
    {195, -360, "Central Asia Standard Time", kNone},
    {200, -330, "Sri Lanka Standard Time", kNone},
    {201, -420, "N. Central Asia Standard Time", kNone},
    {203, -390, "Myanmar Standard Time", kNone},
    {205, -420, "SE Asia Standard Time", kNone},
    {207, -420, "North Asia Standard Time", kNone},
    {210, -480, "China Standard Time", kNone},
    {215, -480, "Singapore Standard Time", kNone},
    {220, -480, "Taipei Standard Time", kNone},
    {225, -480, "W. Australia Standard Time", kNone},
    {227, -480, "North Asia East Standard Time", kNone},
    {230, -540, "Korea Standard Time", kNone},
    {235, -540, "Tokyo Standard Time", kNone},
    {240, -540, "Yakutsk Standard Time", kNone},
    {245, -570, "AUS Central Standard Time", kNone},
    {250, -570, "Cen. Australia Standard Time", kAustralia},
    {255, -600, "AUS Eastern Standard Time", kAustralia},
    {260, -600, "E. Australia Standard Time", kNone},
    {265, -600, "Tasmania Standard Time", kAustralia},
    {270, -600, "Vladivostok Standard Time", kNone},
    {275, -600, "West Pacific Standard Time", kNone},
    {280, -660, "Central Pacific Standard Time", kNone},
    {285, -720, "Fiji Standard Time", kNone},
    {290, -720, "New Zealand Standard Time", kNewZealand},
    {300, -780, "Tonga Standard Time", kNone},
};

std::string DaylightName(std::string key) {
  const std::string standard = "Standard";
  return key.replace(key.find(standard), standard.size(), "Daylight");
}

SYSTEMTIME Date(const Change& change) {
  SYSTEMTIME date = {};
  date.wMonth = change.month;
  date.wDay = change.nth;
  date.wDayOfWeek = change.day_of_week;
  date.wHour = change.hour;
  return date;
}

TimeZoneRow MakeRow(const Zone& zone) {
  TIME_ZONE_INFORMATION rules = {};
  rules.Bias = zone.bias;
  rules.DaylightBias = kDaylightBias;
  rules.DaylightDate = Date(zone.rules.daylight);
  rules.StandardDate = Date(zone.rules.standard);
  Utf8ToWide(zone.key).copy(rules.StandardName, std::size(rules.StandardName) - 1);
  Utf8ToWide(DaylightName(zone.key)).copy(rules.DaylightName, std::size(rules.DaylightName) - 1);
  return {zone.index, zone.key, rules};
}

}  // namespace

const std::vector<TimeZoneRow>& TimeZones() {
  static const std::vector<TimeZoneRow> rows = [] {
    std::vector<TimeZoneRow> made;
    for (const Zone& zone : kZones) made.push_back(MakeRow(zone));
    return made;
  }();
  return rows;
}

std::optional<TIME_ZONE_INFORMATION> FindTimeZone(const std::string& key) {
  for (const TimeZoneRow& row : TimeZones()) {
    if (row.key == key) return row.rules;
  }
  return std::nullopt;
}

}  // namespace host::instrument
