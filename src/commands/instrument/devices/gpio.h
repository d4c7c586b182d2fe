// The controller's output lines.
#ifndef QXCM_COMMANDS_INSTRUMENT_DEVICES_GPIO_H
#define QXCM_COMMANDS_INSTRUMENT_DEVICES_GPIO_H

#include <cstdint>

#include "platform/event.h"

namespace qxcm {

/// Sets a line high or low while the system-wide mutex of the lines is held. 0, or -101 when the device cannot be
/// opened or refuses, the platform refuses the mutex, or `give_up` was set while another process held it. Any thread.
std::int32_t SetGpioLine(std::uint32_t line, bool high, const Event& give_up);

}  // namespace qxcm

#endif
