// The simulated system library as the library calls it: the calls by role, with their ordinals, records and log
// entries.
#ifndef QXHOST_INSTRUMENT_SYSTEM_CALLS_H
#define QXHOST_INSTRUMENT_SYSTEM_CALLS_H

#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <type_traits>

#include "common/calls/entry.h"

extern "C" {

/// Two angles (horizontal, vertical) or two tilts (X, Y), radians.
struct QxPair {
  double first;
  double second;
};
/// Ordinal 8: the two angles first.
struct QxAngleRecord {
  QxPair angles;
  double unused[4];
};
/// Ordinal 9: the last measurement; metres and radians.
struct QxMeasurementRecord {
  double slope_distance;
  QxPair angles;
  double unused[3];
};
/// Ordinal 11.
struct QxMeasurementStatus {
  std::uint32_t distance_valid;
  std::uint32_t unused[7];
};

std::int32_t WINAPI QxSystemGetIntegerParameter(std::int32_t index, std::int32_t* value);
std::int32_t WINAPI QxSystemSetIntegerParameter(std::int32_t index, std::int32_t value);
std::int32_t WINAPI QxSystemGetDoubleParameter(std::int32_t index, double* value);
std::int32_t WINAPI QxSystemSetDoubleParameter(std::int32_t index, double value);
std::int32_t WINAPI QxSystemGetEdmCode(std::int32_t index, std::int32_t* code);
std::int32_t WINAPI QxSystemSetEdmCode(std::int32_t index, std::int32_t code);
std::int32_t WINAPI QxSystemReadStoreItem(std::uint32_t item, void* value);
std::int32_t WINAPI QxSystemWriteStoreItem(std::uint32_t item, const void* value);
std::int32_t WINAPI QxSystemStartDistance(std::uint32_t mode, std::uint32_t target);
std::int32_t WINAPI QxSystemStopDistance();
std::int32_t WINAPI QxSystemGetAngles(QxAngleRecord* record, std::int32_t flag);
std::int32_t WINAPI QxSystemGetMeasurement(QxMeasurementRecord* record);
std::int32_t WINAPI QxSystemGetTilt(QxPair* tilt);
std::int32_t WINAPI QxSystemGetMeasurementStatus(QxMeasurementStatus* status);
std::int32_t WINAPI QxSystemSetHorizontalAngle(double angle);
std::int32_t WINAPI QxSystemSetSignedHorizontalAngle(double angle);
std::int32_t WINAPI QxSystemGetFocusDistance(void* buffer);
std::int32_t WINAPI QxSystemFocusToDistance(double distance);
std::int32_t WINAPI QxSystemStartAutofocus(std::int32_t on);
std::int32_t WINAPI QxSystemSetSwitch(std::int32_t number, std::int32_t value);
std::int32_t WINAPI QxSystemGetSwitch(std::int32_t number, std::int32_t* value);
std::int32_t WINAPI QxSystemGetReferenceAngles(QxPair* angles);
std::int32_t WINAPI QxSystemStopFocus();
std::int32_t WINAPI QxSystemMoveFocusTo(std::int32_t position);
std::int32_t WINAPI QxSystemMoveFocusBy(std::int32_t steps);

}  // extern "C"

namespace host::instrument {

/// One call of the system library by its ordinal: listed with its plain arguments, open to faults. `work` does the call
/// and returns nothing, or whether it succeeded; the call answers 0 for success and -1 for failure.
template <class Work>
std::int32_t SystemCall(int ordinal, std::initializer_list<CallValue> arguments, Work work) {
  const auto real = [&]() -> std::int32_t {
    if constexpr (std::is_same_v<decltype(work()), bool>) {
      return work() ? 0 : -1;
    } else {
      work();
      return 0;
    }
  };
  return Entry(
      "QxSystem", ordinal, true, [&] { return CallValues(arguments); }, real, FailsWith::kMinusOne);
}

}  // namespace host::instrument

#endif
