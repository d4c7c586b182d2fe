#include "platform/battery_query.h"

namespace qxcm {

namespace {

using Query = std::int32_t(WINAPI*)(std::uint32_t* words);

Query FindQuery() {
  const HMODULE library = GetModuleHandleW(TEXT("QxSystem.dll"));
  if (library == nullptr) return nullptr;
  const FARPROC procedure = GetProcAddressW(library, MAKEINTRESOURCEW(QX_BATTERY_QUERY_ORDINAL));
  return reinterpret_cast<Query>(reinterpret_cast<void*>(procedure));
}

}  // namespace

DWORD BatteryEventMask() { return QX_BATTERY_EVENT_MASK; }

void QueryBattery(BatteryLevels* levels) {
  const Query query = QX_BATTERY_QUERY_ORDINAL == 0 ? nullptr : FindQuery();
  if (query == nullptr) return;
  std::uint32_t words[] = {levels->left, levels->right, levels->external, levels->source};
  query(words);
  *levels = {words[0], words[1], words[2], words[3]};
}

}  // namespace qxcm
