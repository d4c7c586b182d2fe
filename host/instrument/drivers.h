// The drivers that the instrument's platform has loaded from its start: the sensors' bus, the output lines, and the
// Bluetooth port's, which has the port only while the radio is on.
//
// With QxSystem's ordinal 12, by which the library says that it has opened its devices, they are linked wherever the
// library is; so a test of the library needs no call for them.
#ifndef QXHOST_INSTRUMENT_DRIVERS_H
#define QXHOST_INSTRUMENT_DRIVERS_H

#include <windows.h>

#include <cstdint>

extern "C" {

/// Ordinal 12. The simulated instrument takes note in its log only.
std::int32_t WINAPI QxSystemAnnounceService();

}  // extern "C"

namespace host::instrument {

/// Loads what is not loaded (again).
void LoadDrivers();

}  // namespace host::instrument

#endif
