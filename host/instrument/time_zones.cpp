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
  const char* key;
  LONG bias;  // minutes west of UTC
  Rules rules;
};
constexpr Zone kZones[] = {
    {0, "Dateline Standard Time", 720, kNone},
    {1, "Samoa Standard Time", -780, kNone},
    {2, "Hawaiian Standard Time", 600, kNone},
    {3, "Alaskan Standard Time", 540, kNorthAmerica},
    {4, "Pacific Standard Time", 480, kNorthAmerica},
    {10, "Mountain Standard Time", 420, kNorthAmerica},
    {13, "Mexico Standard Time 2", 420, kMexico},
    {15, "US Mountain Standard Time", 420, kNone},
    {20, "Central Standard Time", 360, kNorthAmerica},
    {25, "Canada Central Standard Time", 360, kNone},
    {30, "Mexico Standard Time", 360, kMexico},
    {33, "Central America Standard Time", 360, kNone},
    {35, "Eastern Standard Time", 300, kNorthAmerica},
    {40, "US Eastern Standard Time", 300, kNorthAmerica},
    {45, "SA Pacific Standard Time", 300, kNone},
    {50, "Atlantic Standard Time", 240, kNorthAmerica},
    {55, "SA Western Standard Time", 240, kNone},
    {56, "Pacific SA Standard Time", 240, kChile},
    {60, "Newfoundland Standard Time", 210, kNorthAmerica},
    {65, "E. South America Standard Time", 180, kNone},
    {70, "SA Eastern Standard Time", 180, kNone},
    {73, "Greenland Standard Time", 120, kNone},
    {75, "Mid-Atlantic Standard Time", 120, kMidAtlantic},
    {80, "Azores Standard Time", 60, kAzores},
    {83, "Cape Verde Standard Time", 60, kNone},
    {85, "GMT Standard Time", 0, kWestEurope},
    {90, "Greenwich Standard Time", 0, kNone},
    {95, "Central Europe Standard Time", -60, kEurope},
    {100, "Central European Standard Time", -60, kEurope},
    {105, "Romance Standard Time", -60, kEurope},
    {110, "W. Europe Standard Time", -60, kEurope},
    {113, "W. Central Africa Standard Time", -60, kNone},
    {115, "E. Europe Standard Time", -120, kEurope},
    {120, "Egypt Standard Time", -120, kNone},
    {125, "FLE Standard Time", -120, kEastEurope},
    {130, "GTB Standard Time", -120, kEastEurope},
    {135, "Israel Standard Time", -120, kIsrael},
    {140, "South Africa Standard Time", -120, kNone},
    {145, "Russian Standard Time", -180, kNone},
    {150, "Arab Standard Time", -180, kNone},
    {155, "E. Africa Standard Time", -180, kNone},
    {158, "Arabic Standard Time", -180, kNone},
    {160, "Iran Standard Time", -210, kNone},
    {165, "Arabian Standard Time", -240, kNone},
    {170, "Caucasus Standard Time", -240, kNone},
    {175, "Afghanistan Standard Time", -270, kNone},
    {180, "Ekaterinburg Standard Time", -300, kNone},
    {185, "West Asia Standard Time", -300, kNone},
    {190, "India Standard Time", -330, kNone},
    {193, "Nepal Standard Time", -345, kNone},
    {195, "Central Asia Standard Time", -360, kNone},
    {200, "Sri Lanka Standard Time", -330, kNone},
    {201, "N. Central Asia Standard Time", -420, kNone},
    {203, "Myanmar Standard Time", -390, kNone},
    {205, "SE Asia Standard Time", -420, kNone},
    {207, "North Asia Standard Time", -420, kNone},
    {210, "China Standard Time", -480, kNone},
    {215, "Singapore Standard Time", -480, kNone},
    {220, "Taipei Standard Time", -480, kNone},
    {225, "W. Australia Standard Time", -480, kNone},
    {227, "North Asia East Standard Time", -480, kNone},
    {230, "Korea Standard Time", -540, kNone},
    {235, "Tokyo Standard Time", -540, kNone},
    {240, "Yakutsk Standard Time", -540, kNone},
    {245, "AUS Central Standard Time", -570, kNone},
    {250, "Cen. Australia Standard Time", -570, kAustralia},
    {255, "AUS Eastern Standard Time", -600, kAustralia},
    {260, "E. Australia Standard Time", -600, kNone},
    {265, "Tasmania Standard Time", -600, kAustralia},
    {270, "Vladivostok Standard Time", -600, kNone},
    {275, "West Pacific Standard Time", -600, kNone},
    {280, "Central Pacific Standard Time", -660, kNone},
    {285, "Fiji Standard Time", -720, kNone},
    {290, "New Zealand Standard Time", -720, kNewZealand},
    {300, "Tonga Standard Time", -780, kNone},
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
