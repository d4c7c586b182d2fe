// The sensors' commands and the bytes of their answers.
#include "instrument/sensors.h"

namespace host::instrument {
namespace {

constexpr std::uint8_t kIdle = 0xFF;

// The first two bytes of what is sent, as one number.
constexpr unsigned kNoCommand = 0x10000;
constexpr unsigned kEdmWriteOffset = 0x001D;  // low byte, high byte
constexpr unsigned kEdmStoreOffset = 0x40C3;
constexpr unsigned kEdmReadOffset = 0xC01D;
constexpr unsigned kEdmFpgaVersion = 0xC009;
constexpr unsigned kAngleVersion = 0x0001;
constexpr unsigned kAngleChecksum = 0x0002;
constexpr unsigned kAngleReadPair = 0x0011;
constexpr unsigned kAngleWritePair = 0x0810;  // X and Y, high bytes first
constexpr unsigned kAngleTiltSwitch = 0x0811;
constexpr unsigned kVersion = 0xC007;   // distance meter and focus drive
constexpr unsigned kChecksum = 0xC008;  // the same two

unsigned CommandOf(const Bytes& command, std::size_t arguments) {
  return command.size() == 2 + arguments ? command[0] * 0x100u + command[1] : kNoCommand;
}

std::uint8_t Low(unsigned word) { return static_cast<std::uint8_t>(word); }
std::uint8_t High(unsigned word) { return static_cast<std::uint8_t>(word >> 8); }
std::uint16_t Word(std::uint8_t high, std::uint8_t low) { return static_cast<std::uint16_t>(high << 8 | low); }

Bytes VersionAnswer(std::uint8_t first, const Version& version) {
  return {first, version[0], version[1], version[2], version[3]};
}

}  // namespace

void Sensor::Write(const Bytes& sent) {
  if (sent.empty()) return;
  command_ = sent;
  Obey(command_);
}

Bytes Sensor::Read(std::size_t count) const {
  Bytes answer = Answer(command_);
  answer.resize(count, kIdle);
  return answer;
}

void Sensor::Obey(const Bytes&) {}

void EdmSensor::Obey(const Bytes& command) {
  if (CommandOf(command, 2) == kEdmWriteOffset) {
    written_offset_ = static_cast<std::int16_t>(Word(command[3], command[2]));
  }
  if (CommandOf(command, 0) == kEdmStoreOffset) {
    offset = written_offset_.value_or(offset);
    written_offset_.reset();
  }
}

Bytes EdmSensor::Answer(const Bytes& command) const {
  const auto raw = static_cast<std::uint16_t>(offset);
  switch (CommandOf(command, 0)) {
    case kEdmReadOffset:
      return {0, Low(raw), High(raw)};
    case kVersion:
      return VersionAnswer(0, version);
    case kEdmFpgaVersion:
      return VersionAnswer(0, fpga_version);
    case kChecksum:
      return {0, Low(checksum), High(checksum)};
    default:
      return {};
  }
}

void AngleSensor::Obey(const Bytes& command) {
  if (CommandOf(command, 4) == kAngleWritePair) {
    x = Word(command[2], command[3]);
    y = Word(command[4], command[5]);
  }
  if (CommandOf(command, 1) == kAngleTiltSwitch) tilt_switch = command[2];
}

Bytes AngleSensor::Answer(const Bytes& command) const {
  switch (CommandOf(command, 0)) {
    case kAngleReadPair:
      return {0, High(x), Low(x), High(y), Low(y)};
    case kAngleVersion:
      return VersionAnswer(0, version);
    case kAngleChecksum:
      return {0, High(checksum), Low(checksum)};
    default:
      return {};
  }
}

Bytes FocusDrive::Answer(const Bytes& command) const {
  switch (CommandOf(command, 0)) {
    case kVersion:
      return VersionAnswer(status, version);
    case kChecksum:
      return {status, Low(checksum), High(checksum)};
    default:
      return {};
  }
}

Bytes TemperatureSensor::Answer(const Bytes&) const { return answer; }

Sensors& Sensors::Instance() {
  static auto* sensors = new Sensors;  // transfers may still come while the process ends
  return *sensors;
}

Sensor* Sensors::Find(std::uint8_t address) {
  switch (address) {
    case kEdmAddress:
      return &set_.edm;
    case kAngleAddress:
      return &set_.angle;
    case kFocusAddress:
      return &set_.focus;
    case kTemperatureAddress:
      return &set_.temperature;
    default:
      return nullptr;
  }
}

bool Sensors::Transfer(std::uint8_t address, const Bytes& sent, Bytes* read) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Sensor* sensor = Find(address);
  if (sensor == nullptr || !sensor->present) return false;
  sensor->Write(sent);
  if (read != nullptr) *read = sensor->Read(read->size());
  return true;
}

void Sensors::Reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  set_ = SensorSet();
}

}  // namespace host::instrument
