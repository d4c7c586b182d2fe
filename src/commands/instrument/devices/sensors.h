// What the sensors hold, read and written in their own byte sequences.
#ifndef QXCM_COMMANDS_INSTRUMENT_DEVICES_SENSORS_H
#define QXCM_COMMANDS_INSTRUMENT_DEVICES_SENSORS_H

#include <cstdint>

namespace qxcm {

class CommandProcessor;

// Each holds the sensor's mutex for its whole sequence; false when a transfer failed. On the dispatcher thread.

/// The distance meter's offset as it is stored; the value on the wire depends on the distance meter's type.
bool ReadDistanceOffset(CommandProcessor& processor, std::int16_t* raw);
bool WriteDistanceOffset(CommandProcessor& processor, std::uint16_t raw);

/// The tilt sensor's pair of values.
struct TiltPair {
  std::uint16_t x = 0;
  std::uint16_t y = 0;
};
bool ReadTiltPair(CommandProcessor& processor, TiltPair* pair);
bool WriteTiltPair(CommandProcessor& processor, const TiltPair& pair);

/// The tilt sensor's switch.
bool WriteTiltSwitch(CommandProcessor& processor, std::uint8_t value);

}  // namespace qxcm

#endif
