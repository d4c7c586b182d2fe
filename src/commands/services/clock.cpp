// ST_CLK, GT_CLK: the instrument's local date and time, and its time zone by number.
//   C<ST_CLK,TMZ=110,DTE=20240131,TIM=093005>  ->  ACK
//   C<GT_CLK,TIM,DTE,TMZ>                      ->  R<CLK,DTE=20240131,TIM=093005,TMZ=110>, ACK    (its own order)
// ST_CLK sets the zone first: a bad date or time leaves the new zone in force.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "QXCommMgr.h"
#include "commands/measure/valuetext/date_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "commands/services/time_zones.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kZone = "TMZ";
constexpr std::string_view kDate = "DTE";
constexpr std::string_view kTime = "TIM";
constexpr std::size_t kFieldBuffer = 64;

bool SetZone(std::string_view number) {
  const TimeZone* zone = TimeZoneTable::Find(ParseLeadingInt(number));
  if (zone == nullptr) return false;
  const std::optional<TIME_ZONE_INFORMATION> information = ReadZone(*zone);
  return information && SetTimeZoneInformation(&*information) != FALSE;
}

bool SameBiases(const TimeZoneRules& rules, const TIME_ZONE_INFORMATION& current) {
  return rules.bias == current.Bias && rules.daylight_bias == current.DaylightBias &&
         rules.standard_bias == current.StandardBias;
}

/// The number of the first zone with the biases and the name of the one in force; empty when there is none.
std::string CurrentZone() {
  TIME_ZONE_INFORMATION current = {};
  GetTimeZoneInformation(&current);
  const WideText name(current.StandardName,
                      std::find(std::begin(current.StandardName), std::end(current.StandardName), WCHAR()));
  for (const TimeZone& zone : TimeZoneTable()) {
    const std::optional<TimeZoneRules> rules = ReadRules(zone);
    if (rules && SameBiases(*rules, current) && ReadStandardName(zone) == name) return std::to_string(zone.index);
  }
  return {};
}

template <class... Numbers>
void AddNumbers(Reply& reply, std::string_view key, const char* format, Numbers... numbers) {
  char text[kFieldBuffer];
  std::snprintf(text, sizeof text, format, numbers...);
  reply.Add(key, text);
}

}  // namespace

std::int32_t StClk(CommandProcessor& processor, const FieldMap& fields) {
  SYSTEMTIME time = {};
  GetLocalTime(&time);
  if (const auto* zone = fields.Find(kZone); zone != nullptr) {
    if (!SetZone(*zone)) return kBadParameter;
    processor.PostNotification(QCM_NOTIFY_TIME_ZONE_CHANGED, 0);
  }
  const auto* date = fields.Find(kDate);
  if (date != nullptr && !ParseDate(*date, &time)) return kBadParameter;
  const auto* time_of_day = fields.Find(kTime);
  if (time_of_day != nullptr && !ParseTime(*time_of_day, &time)) return kBadParameter;
  if (date == nullptr && time_of_day == nullptr) return kDone;
  if (!SetLocalTime(&time)) return kBadParameter;
  processor.PostNotification(QCM_NOTIFY_CLOCK_SET, 0);
  return kDone;
}

std::int32_t GtClk(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("CLK");
  SYSTEMTIME time = {};
  GetLocalTime(&time);
  if (fields.Has(kDate)) AddNumbers(reply, kDate, "%04d%02d%02d", time.wYear, time.wMonth, time.wDay);
  if (fields.Has(kTime)) AddNumbers(reply, kTime, "%02d%02d%02d", time.wHour, time.wMinute, time.wSecond);
  if (fields.Has(kZone)) reply.Add(kZone, CurrentZone());
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
