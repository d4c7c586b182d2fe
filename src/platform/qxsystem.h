// The instrument's system library (QxSystem.dll), named by role: QxSystemStartDistance is its ordinal 5, and so on.
#ifndef QXCM_PLATFORM_QXSYSTEM_H
#define QXCM_PLATFORM_QXSYSTEM_H

#include <cstdint>

#include "platform/windows_api.h"

extern "C" {

/// Two angles (horizontal, vertical) or two tilts (X, Y), radians.
struct QxPair {
  double first;
  double second;
};

/// Ordinal 8. What follows the two angles is the system library's own.
struct QxAngleRecord {
  QxPair angles;
  double unused[4];
};

/// Ordinal 9: the last measurement.
struct QxMeasurementRecord {
  double slope_distance;
  QxPair angles;
  double unused[3];
};

/// Ordinal 11: where a measurement stands.
struct QxMeasurementStatus {
  std::uint32_t distance_valid;
  std::uint32_t unused[7];
};

#define QX_SYSTEM_CALL(ordinal, role, parameters) DECLSPEC_IMPORT std::int32_t WINAPI QxSystem##role parameters;
#include "platform/qxsystem_calls.h"
#undef QX_SYSTEM_CALL

}  // extern "C"

#endif
