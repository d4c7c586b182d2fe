// The simulated batteries, and the system library's call that reads them.
//
// The call is found at run time, by its ordinal in "QxSystem.dll" (QX_BATTERY_QUERY_ORDINAL). A change of the batteries
// is told with the event QX_BATTERY_EVENT_MASK.
#ifndef QXHOST_INSTRUMENT_BATTERY_H
#define QXHOST_INSTRUMENT_BATTERY_H

#include <windows.h>

#include <cstdint>
#include <functional>
#include <mutex>

extern "C" {

/// Fills four words: left, right and external level, and the source in use (0 left, 1 right, 2 external).
/// Result 0; -1 for null.
std::int32_t WINAPI QxSystemQueryBattery(std::uint32_t* record);

}  // extern "C"

namespace host::instrument {

constexpr std::uint32_t kBatteryEvent = QX_BATTERY_EVENT_MASK;

/// The words as the call gives them.
struct BatteryLevels {
  std::uint32_t left = 80;
  std::uint32_t right = 71;
  std::uint32_t external = 0;
  std::uint32_t source = 0;
};

/// Any thread. A change delivers no event: whoever makes it says so to the event window.
class Battery {
 public:
  /// The instrument's one.
  static Battery& Instance();

  BatteryLevels levels() const;
  void Change(const std::function<void(BatteryLevels&)>& change);

 private:
  mutable std::mutex mutex_;
  BatteryLevels levels_;
};

/// Loads the system library with the query in it; without it the library finds no query.
void LoadBatteryQuery();
void UnloadBatteryQuery();

}  // namespace host::instrument

#endif
