// How a fresh instrument's registry is.
#include <cstring>
#include <utility>

#include "common/registry/registry_tree.h"
#include "common/registry/time_zones.h"

namespace host {
namespace {

RegistryValue TextValue(WideString name, WideView text) {
  RegistryValue value{std::move(name), REG_SZ, std::vector<BYTE>((text.size() + 1) * sizeof(WCHAR))};
  std::memcpy(value.data.data(), text.data(), text.size() * sizeof(WCHAR));
  return value;
}

RegistryValue RulesValue(const TimeZone& zone) {
  const TimeZoneRecord record = {zone.bias, zone.standard_bias, zone.daylight_bias, zone.standard_date,
                                 zone.daylight_date};
  RegistryValue value{TEXT("TZI"), REG_BINARY, std::vector<BYTE>(sizeof record)};
  std::memcpy(value.data.data(), &record, sizeof record);
  return value;
}

}  // namespace

RegistryContent DefaultRegistry() {
  RegistryEdit edit(EmptyRegistry());
  for (const TimeZone& zone : TimeZones()) {
    const RegistryPath path = {TEXT("HKLM"), TEXT("Time Zones"), zone.key};
    edit.SetValue(path, RulesValue(zone));
    edit.SetValue(path, TextValue(TEXT("Std"), zone.standard_name));
    edit.SetValue(path, TextValue(TEXT("Dlt"), zone.daylight_name));
  }
  return edit.content();
}

}  // namespace host
