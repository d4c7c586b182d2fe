#include "instrument/time_zones.h"

#include <algorithm>
#include <iterator>

#include "common/registry/time_zones.h"
#include "common/text/utf.h"

namespace host::instrument {
namespace {

template <std::size_t kSize>
void CopyName(const WCHAR* from, WCHAR (&name)[kSize]) {
  const WideString text = from;
  std::copy_n(text.begin(), std::min(text.size(), kSize - 1), name);
}

TimeZoneRow RowOf(const host::TimeZone& zone) {
  TimeZoneRow row = {zone.index, WideToUtf8(zone.key), {}};
  row.rules.Bias = zone.bias;
  row.rules.StandardBias = zone.standard_bias;
  row.rules.DaylightBias = zone.daylight_bias;
  row.rules.StandardDate = zone.standard_date;
  row.rules.DaylightDate = zone.daylight_date;
  CopyName(zone.standard_name, row.rules.StandardName);
  CopyName(zone.daylight_name, row.rules.DaylightName);
  return row;
}

std::vector<TimeZoneRow> MakeRows() {
  std::vector<TimeZoneRow> rows;
  const auto zones = host::TimeZones();
  std::transform(zones.begin(), zones.end(), std::back_inserter(rows), RowOf);
  return rows;
}

}  // namespace

const std::vector<TimeZoneRow>& TimeZones() {
  static const std::vector<TimeZoneRow> rows = MakeRows();
  return rows;
}

std::optional<TIME_ZONE_INFORMATION> FindTimeZone(const std::string& key) {
  for (const TimeZoneRow& row : TimeZones()) {
    if (row.key == key) return row.rules;
  }
  return std::nullopt;
}

}  // namespace host::instrument
