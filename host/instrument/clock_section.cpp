#include "instrument/clock_section.h"

#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "common/system/calendar.h"
#include "common/system/clock.h"
#include "common/text/utf.h"
#include "instrument/field_section.h"

namespace host::instrument {
namespace {

std::string LocalText() {
  SYSTEMTIME time = {};
  host::GetLocalTime(&time);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.wYear, time.wMonth, time.wDay, time.wHour,
                time.wMinute, time.wSecond);
  return text;
}

/// The number of these digits; a number too large for any date when one of them is none.
WORD Number(const std::string& text, std::size_t at, std::size_t digits) {
  WORD number = 0;
  for (std::size_t i = at; i < at + digits; ++i) {
    if (text[i] < '0' || text[i] > '9') return UINT16_MAX;
    number = static_cast<WORD>(number * 10 + (text[i] - '0'));
  }
  return number;
}

/// Reads exactly "2024-01-31T09:30:05".
std::optional<SYSTEMTIME> ReadLocal(const std::string& text) {
  const std::string form = "0000-00-00T00:00:00";
  if (text.size() != form.size()) return std::nullopt;
  for (const std::size_t at : {4, 7, 10, 13, 16}) {
    if (text[at] != form[at]) return std::nullopt;
  }
  SYSTEMTIME time = {};
  time.wYear = Number(text, 0, 4);
  time.wMonth = Number(text, 5, 2);
  time.wDay = Number(text, 8, 2);
  time.wHour = Number(text, 11, 2);
  time.wMinute = Number(text, 14, 2);
  time.wSecond = Number(text, 17, 2);
  return IsCalendarTime(time) ? std::optional(time) : std::nullopt;
}

Field LocalField() {
  const auto check = [](const Json& value) {
    // The first year is left out: its first hours may be before the first moment in UTC, which depends on the zone.
    const auto time = value.is_string() ? ReadLocal(value.get<std::string>()) : std::nullopt;
    const bool good = time && time->wYear > kFirstYear;
    if (!good) throw StateError("a date and time like 2024-01-31T09:30:05 is expected");
  };
  const auto set = [](const Json& value) {
    const auto time = ReadLocal(value.get<std::string>());
    host::SetLocalTime(&*time);
  };
  return {"local", [] { return Json(LocalText()); }, check, set, nullptr};
}

Field RunningField() {
  Field running = BoolField("running", host::ClockRuns, host::RunClock, true);
  running.reset = [] {
    host::RunClock(true);
    host::FollowMachineClock();
  };
  return running;
}

template <std::size_t kUnits>
std::string NameText(const WCHAR (&name)[kUnits]) {
  const WideView units(name, kUnits);
  return WideToUtf8(units.substr(0, units.find(TEXT('\0'))));
}

Json DateJson(const SYSTEMTIME& date) {
  return {date.wYear, date.wMonth,  date.wDayOfWeek, date.wDay,
          date.wHour, date.wMinute, date.wSecond,    date.wMilliseconds};
}

TIME_ZONE_INFORMATION CurrentZone() {
  TIME_ZONE_INFORMATION zone = {};
  host::GetTimeZoneInformation(&zone);
  return zone;
}

Json RulesJson() {
  const TIME_ZONE_INFORMATION zone = CurrentZone();
  return {{"bias", zone.Bias},
          {"standard_bias", zone.StandardBias},
          {"daylight_bias", zone.DaylightBias},
          {"standard_date", DateJson(zone.StandardDate)},
          {"daylight_date", DateJson(zone.DaylightDate)},
          {"standard_name", NameText(zone.StandardName)},
          {"daylight_name", NameText(zone.DaylightName)}};
}

/// The zone by its key name, which the clock itself does not know.
class NamedZone {
 public:
  explicit NamedZone(ZoneLookup find) : find_(std::move(find)) {}

  void Check(const Json& value) const {
    if (value.is_string() && find_(value.get<std::string>())) return;
    throw StateError("the key name of a time zone is expected");
  }

  void Set(const std::string& key) {
    const auto zone = find_(key);
    if (!zone || !host::SetTimeZoneInformation(&*zone)) return;
    key_ = key;
    zone_ = *zone;
  }

  /// The key last set while its zone is in force, else the standard time's name.
  std::string Text() const {
    const TIME_ZONE_INFORMATION now = CurrentZone();
    // The structure has no padding, and what is behind a name comes back as it was set.
    const bool as_set = std::memcmp(&now, &zone_, sizeof now) == 0;
    return as_set && !key_.empty() ? key_ : NameText(now.StandardName);
  }

 private:
  const ZoneLookup find_;
  std::string key_;
  TIME_ZONE_INFORMATION zone_ = {};
};

Field ZoneField(ZoneLookup find_zone) {
  const auto zone = std::make_shared<NamedZone>(std::move(find_zone));
  return {"zone", [zone] { return Json(zone->Text()); }, [zone](const Json& value) { zone->Check(value); },
          [zone](const Json& value) { zone->Set(value.get<std::string>()); }, [zone] { zone->Set(kStandardZone); }};
}

class ClockSection final : public FieldSection {
 public:
  explicit ClockSection(ZoneLookup find_zone)
      : FieldSection("clock", {LocalField(), RunningField(), ZoneField(std::move(find_zone)),
                               ReadOnlyField("rules", RulesJson)}) {}

  /// A local time given with a zone is that zone's, and a clock that shall stop stops at the time given.
  void Apply(const Json& patch) override {
    for (const char* name : {"zone", "running", "local"}) {
      const auto member = patch.find(name);
      if (member != patch.end()) FieldSection::Apply(Json{{name, *member}});
    }
  }
};

}  // namespace

std::unique_ptr<StateSection> MakeClockSection(ZoneLookup find_zone) {
  return std::make_unique<ClockSection>(std::move(find_zone));
}

}  // namespace host::instrument
