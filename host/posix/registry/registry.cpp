#include "common/registry/registry.h"

#include <cstring>
#include <utility>

#include "common/registry/time_zones.h"

namespace host {
namespace {

RegistryValue TextValue(std::u16string name, std::u16string_view text) {
  RegistryValue value{std::move(name), REG_SZ, std::vector<BYTE>((text.size() + 1) * sizeof(WCHAR))};
  std::memcpy(value.data.data(), text.data(), text.size() * sizeof(WCHAR));
  return value;
}

RegistryValue RulesValue(const TimeZone& zone) {
  const TimeZoneRecord record = {zone.bias, zone.standard_bias, zone.daylight_bias, zone.standard_date,
                                 zone.daylight_date};
  RegistryValue value{u"TZI", REG_BINARY, std::vector<BYTE>(sizeof record)};
  std::memcpy(value.data.data(), &record, sizeof record);
  return value;
}

}  // namespace

RegistryContent DefaultRegistry() {
  RegistryEdit edit(EmptyRegistry());
  for (const TimeZone& zone : TimeZones()) {
    const RegistryPath path = {u"HKLM", u"Time Zones", zone.key};
    edit.SetValue(path, RulesValue(zone));
    edit.SetValue(path, TextValue(u"Std", zone.standard_name));
    edit.SetValue(path, TextValue(u"Dlt", zone.daylight_name));
  }
  return edit.content();
}

Registry& Registry::Instance() {
  static auto* registry = new Registry;  // calls may still come while the process ends
  return *registry;
}

Registry::Registry() : content_(DefaultRegistry()) {}

RegistryContent Registry::Content() const {
  const std::lock_guard<std::mutex> lock(content_mutex_);
  return content_;
}

DWORD Registry::Change(const Edit& edit) {
  const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
  RegistryContent before = Content();
  RegistryContent after = before;
  if (const DWORD error = edit(&after)) return error;
  if (after.top == before.top) return ERROR_SUCCESS;
  if (after.bytes > kMostRegistryBytes) return ERROR_OUTOFMEMORY;
  if (const DWORD error = keeper_ ? keeper_(after) : ERROR_SUCCESS) return error;
  const std::lock_guard<std::mutex> lock(content_mutex_);
  content_ = std::move(after);
  return ERROR_SUCCESS;
}

DWORD Registry::Replace(const RegistryContent& content) {
  return Change([&](RegistryContent* all) {
    *all = content;
    return DWORD{ERROR_SUCCESS};
  });
}

void Registry::SetKeeper(Keeper keeper) {
  const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
  keeper_ = std::move(keeper);
}

}  // namespace host
