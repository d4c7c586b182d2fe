// The instrument's battery levels as its system library last reported them.
#ifndef QXCM_COMMANDS_SERVICES_BATTERY_H
#define QXCM_COMMANDS_SERVICES_BATTERY_H

#include "platform/battery_query.h"
#include "platform/windows_api.h"
#include "protocol/service.h"

namespace qxcm {

/// Part of the CommManager. All zeros until the first battery event.
class BatteryState {
 public:
  explicit BatteryState(Service& service) : service_(service) {}

  /// Refills the levels when the event mask names the battery.
  void HandleEvent(DWORD mask);
  BatteryLevels levels();

 private:
  Service& service_;
  BatteryLevels levels_ QXCM_GUARDED_BY(service_.lock()) = {};
};

}  // namespace qxcm

#endif
