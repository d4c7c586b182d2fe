// The devices' side of the state document: sensors, output lines, Bluetooth radio.
#ifndef QXHOST_INSTRUMENT_DEVICE_SECTIONS_H
#define QXHOST_INSTRUMENT_DEVICE_SECTIONS_H

#include <memory>
#include <vector>

#include "instrument/state.h"

namespace host::instrument {

/// "sensors", "gpio" (read-only), "radio", in this order. A reset of the sensors also makes them forget what they were
/// sent.
std::vector<std::unique_ptr<StateSection>> MakeDeviceSections();

}  // namespace host::instrument

#endif
