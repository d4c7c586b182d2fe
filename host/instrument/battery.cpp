#include "instrument/battery.h"

#include "common/system/modules.h"
#include "instrument/system_calls.h"

namespace host::instrument {
namespace {

constexpr char kSystemLibrary[] = "QxSystem.dll";

}  // namespace

Battery& Battery::Instance() {
  static Battery battery;
  return battery;
}

BatteryLevels Battery::levels() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return levels_;
}

void Battery::Change(const std::function<void(BatteryLevels&)>& change) {
  const std::lock_guard<std::mutex> lock(mutex_);
  change(levels_);
}

void LoadBatteryQuery() {
  const auto query = reinterpret_cast<void (*)()>(QxSystemQueryBattery);
  RegisterProcedure(kSystemLibrary, QX_BATTERY_QUERY_ORDINAL, reinterpret_cast<FARPROC>(query));
}

void UnloadBatteryQuery() { UnregisterModule(kSystemLibrary); }

}  // namespace host::instrument

std::int32_t WINAPI QxSystemQueryBattery(std::uint32_t* record) {
  using host::instrument::Battery;
  return host::instrument::SystemCall(QX_BATTERY_QUERY_ORDINAL, {}, [=] {
    if (record == nullptr) return false;
    const auto levels = Battery::Instance().levels();
    record[0] = levels.left;
    record[1] = levels.right;
    record[2] = levels.external;
    record[3] = levels.source;
    return true;
  });
}
