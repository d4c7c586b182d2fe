#include "commands/services/time_zones.h"

#include <algorithm>
#include <cstring>

#include "platform/registry_key.h"

namespace qxcm {

namespace {

constexpr TimeZone kZones[] = {
    {0, TEXT("Dateline Standard Time")},
    {1, TEXT("Samoa Standard Time")},
    {2, TEXT("Hawaiian Standard Time")},
    {3, TEXT("Alaskan Standard Time")},
    {4, TEXT("Pacific Standard Time")},
    {10, TEXT("Mountain Standard Time")},
    {13, TEXT("Mexico Standard Time 2")},
    {15, TEXT("US Mountain Standard Time")},
    {20, TEXT("Central Standard Time")},
    {25, TEXT("Canada Central Standard Time")},
    {30, TEXT("Mexico Standard Time")},
    {33, TEXT("Central America Standard Time")},
    {35, TEXT("Eastern Standard Time")},
    {40, TEXT("US Eastern Standard Time")},
    {45, TEXT("SA Pacific Standard Time")},
    {50, TEXT("Atlantic Standard Time")},
    {55, TEXT("SA Western Standard Time")},
    {56, TEXT("Pacific SA Standard Time")},
    {60, TEXT("Newfoundland Standard Time")},
    {65, TEXT("E. South America Standard Time")},
    {70, TEXT("SA Eastern Standard Time")},
    {73, TEXT("Greenland Standard Time")},
    {75, TEXT("Mid-Atlantic Standard Time")},
    {80, TEXT("Azores Standard Time")},
    {83, TEXT("Cape Verde Standard Time")},
    {85, TEXT("GMT Standard Time")},
    {90, TEXT("Greenwich Standard Time")},
    {95, TEXT("Central Europe Standard Time")},
    {100, TEXT("Central European Standard Time")},
    {105, TEXT("Romance Standard Time")},
    {110, TEXT("W. Europe Standard Time")},
    {113, TEXT("W. Central Africa Standard Time")},
    {115, TEXT("E. Europe Standard Time")},
    {120, TEXT("Egypt Standard Time")},
    {125, TEXT("FLE Standard Time")},
    {130, TEXT("GTB Standard Time")},
    {135, TEXT("Israel Standard Time")},
    {140, TEXT("South Africa Standard Time")},
    {145, TEXT("Russian Standard Time")},
    {150, TEXT("Arab Standard Time")},
    {155, TEXT("E. Africa Standard Time")},
    {158, TEXT("Arabic Standard Time")},
    {160, TEXT("Iran Standard Time")},
    {165, TEXT("Arabian Standard Time")},
    {170, TEXT("Caucasus Standard Time")},
    {175, TEXT("Afghanistan Standard Time")},
    {180, TEXT("Ekaterinburg Standard Time")},
    {185, TEXT("West Asia Standard Time")},
    {190, TEXT("India Standard Time")},
    {193, TEXT("Nepal Standard Time")},
    {195, TEXT("Central Asia Standard Time")},
    {200, TEXT("Sri Lanka Standard Time")},
    {201, TEXT("N. Central Asia Standard Time")},
    {203, TEXT("Myanmar Standard Time")},
    {205, TEXT("SE Asia Standard Time")},
    {207, TEXT("North Asia Standard Time")},
    {210, TEXT("China Standard Time")},
    {215, TEXT("Singapore Standard Time")},
    {220, TEXT("Taipei Standard Time")},
    {225, TEXT("W. Australia Standard Time")},
    {227, TEXT("North Asia East Standard Time")},
    {230, TEXT("Korea Standard Time")},
    {235, TEXT("Tokyo Standard Time")},
    {240, TEXT("Yakutsk Standard Time")},
    {245, TEXT("AUS Central Standard Time")},
    {250, TEXT("Cen. Australia Standard Time")},
    {255, TEXT("AUS Eastern Standard Time")},
    {260, TEXT("E. Australia Standard Time")},
    {265, TEXT("Tasmania Standard Time")},
    {270, TEXT("Vladivostok Standard Time")},
    {275, TEXT("West Pacific Standard Time")},
    {280, TEXT("Central Pacific Standard Time")},
    {285, TEXT("Fiji Standard Time")},
    {290, TEXT("New Zealand Standard Time")},
    {300, TEXT("Tonga Standard Time")},
};

constexpr WCHAR kZonesKey[] = TEXT("Time Zones\\");
constexpr WCHAR kRulesValue[] = TEXT("TZI");
constexpr WCHAR kStandardNameValue[] = TEXT("Std");
constexpr WCHAR kDaylightNameValue[] = TEXT("Dlt");

RegistryKey KeyOf(const TimeZone& zone) { return {HKEY_LOCAL_MACHINE, WideText(kZonesKey) + zone.name}; }

/// Reads a text into a buffer of zeros, whose last character stays zero; a text that does not fit leaves it empty.
template <std::size_t kSize>
void ReadName(const RegistryKey& key, LPCWSTR value, WCHAR (&name)[kSize]) {
  DWORD bytes = sizeof name;
  if (!key.ReadValue(value, REG_SZ, name, &bytes)) std::memset(name, 0, sizeof name);
  name[kSize - 1] = 0;
}

}  // namespace

const TimeZone* TimeZoneTable::begin() { return std::begin(kZones); }
const TimeZone* TimeZoneTable::end() { return std::end(kZones); }

const TimeZone* TimeZoneTable::Find(std::int32_t index) {
  const TimeZone* zone =
      std::lower_bound(begin(), end(), index, [](const TimeZone& z, std::int32_t i) { return z.index < i; });
  return zone != end() && zone->index == index ? zone : nullptr;
}

std::optional<TimeZoneRules> ReadRules(const TimeZone& zone) {
  TimeZoneRules rules = {};
  DWORD bytes = sizeof rules;
  const bool read = KeyOf(zone).ReadValue(kRulesValue, REG_BINARY, &rules, &bytes);
  if (!read || bytes != sizeof rules) return std::nullopt;
  return rules;
}

std::optional<TIME_ZONE_INFORMATION> ReadZone(const TimeZone& zone) {
  const std::optional<TimeZoneRules> rules = ReadRules(zone);
  if (!rules) return std::nullopt;
  TIME_ZONE_INFORMATION information = {};
  information.Bias = rules->bias;
  information.StandardBias = rules->standard_bias;
  information.DaylightBias = rules->daylight_bias;
  information.StandardDate = rules->standard_date;
  information.DaylightDate = rules->daylight_date;
  ReadName(KeyOf(zone), kDaylightNameValue, information.DaylightName);
  ReadName(KeyOf(zone), kStandardNameValue, information.StandardName);
  return information;
}

WideText ReadStandardName(const TimeZone& zone) {
  WCHAR name[64] = {};
  ReadName(KeyOf(zone), kStandardNameValue, name);
  return name;
}

}  // namespace qxcm
