#include "commands/instrument/devices/sensors.h"

#include "commands/instrument/devices/i2c_bus.h"
#include "protocol/command_processor.h"

namespace qxcm {

namespace {

constexpr DWORD kDistanceMeterPause = 10;  // milliseconds
constexpr DWORD kTiltSensorPause = 1;

std::uint8_t Low(std::uint16_t word) { return static_cast<std::uint8_t>(word & 0xFF); }
std::uint8_t High(std::uint16_t word) { return static_cast<std::uint8_t>(word >> 8); }
std::uint16_t Word(std::uint8_t high, std::uint8_t low) { return static_cast<std::uint16_t>(high << 8 | low); }

}  // namespace

bool ReadDistanceOffset(CommandProcessor& processor, std::int16_t* raw) {
  I2cSession session(processor.service().i2c_bus(), kDistanceMeter, processor.stop_event());
  Bytes answer;
  if (!session.Write({0xC0, 0x1D}) || !session.Wait(kDistanceMeterPause) || !session.Read(3, &answer)) return false;
  *raw = static_cast<std::int16_t>(Word(answer[2], answer[1]));
  return true;
}

bool WriteDistanceOffset(CommandProcessor& processor, std::uint16_t raw) {
  I2cSession session(processor.service().i2c_bus(), kDistanceMeter, processor.stop_event());
  return session.Write({0x00, 0x1D, Low(raw), High(raw)}) && session.Wait(kDistanceMeterPause) &&
         session.Write({0x40, 0xC3});
}

bool ReadTiltPair(CommandProcessor& processor, TiltPair* pair) {
  I2cSession session(processor.service().i2c_bus(), kTiltSensor, processor.stop_event());
  Bytes answer;
  if (!session.Write({0x00, 0x11}) || !session.Wait(kTiltSensorPause) || !session.Read(5, &answer)) return false;
  *pair = {Word(answer[1], answer[2]), Word(answer[3], answer[4])};
  return true;
}

bool WriteTiltPair(CommandProcessor& processor, const TiltPair& pair) {
  I2cSession session(processor.service().i2c_bus(), kTiltSensor, processor.stop_event());
  return session.Write({0x08, 0x10, High(pair.x), Low(pair.x), High(pair.y), Low(pair.y)});
}

bool WriteTiltSwitch(CommandProcessor& processor, std::uint8_t value) {
  I2cSession session(processor.service().i2c_bus(), kTiltSensor, processor.stop_event());
  return session.Write({0x08, 0x11, value});
}

}  // namespace qxcm
