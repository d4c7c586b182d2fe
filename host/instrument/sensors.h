// The sensors on the instrument's I2C bus, each with two faces: what the bus sees, and the members a test sets.
//
// A sensor remembers the bytes it was sent last; its first two are a command. A read is answered from the first byte
// of that command's answer; beyond it, and without a command that asks for something, the bus is idle and reads 0xFF.
// A command a sensor does not know is acknowledged and changes nothing.
#ifndef QXHOST_INSTRUMENT_SENSORS_H
#define QXHOST_INSTRUMENT_SENSORS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace host::instrument {

using Bytes = std::vector<std::uint8_t>;
/// The bytes after byte 0 of a sensor's answer, in the order sent.
using Version = std::array<std::uint8_t, 4>;

constexpr Version kStandardVersion = {1, 2, 3, 4};
constexpr std::uint16_t kStandardChecksum = 0x1234;

/// The bus face, and what all sensors have. Not locked: see Sensors.
class Sensor {
 public:
  virtual ~Sensor() = default;

  /// Takes what is written to it, without the address. Nothing but the address leaves the last command as it is.
  void Write(const Bytes& sent);
  /// Answers so many bytes.
  Bytes Read(std::size_t count) const;

  bool present = true;

 protected:
  Sensor() = default;
  Sensor(const Sensor&) = default;
  Sensor& operator=(const Sensor&) = default;

 private:
  /// A command with its arguments has come; `Obey` does what it sets, `Answer` gives what it asks for.
  virtual void Obey(const Bytes& command);
  virtual Bytes Answer(const Bytes& command) const = 0;

  Bytes command_;
};

/// A write of the offset is kept until the command to store it comes.
class EdmSensor final : public Sensor {
 public:
  std::int16_t offset = 0;  ///< the stored one, raw
  Version version = kStandardVersion;
  std::uint16_t checksum = kStandardChecksum;
  Version fpga_version = {1, 0, 0, 1};

 private:
  void Obey(const Bytes& command) override;
  Bytes Answer(const Bytes& command) const override;

  std::optional<std::int16_t> written_offset_;
};

/// The tilt sensor's board.
class AngleSensor final : public Sensor {
 public:
  std::uint16_t x = 0;
  std::uint16_t y = 0;
  std::uint8_t tilt_switch = 0;
  Version version = kStandardVersion;
  std::uint16_t checksum = kStandardChecksum;

 private:
  void Obey(const Bytes& command) override;
  Bytes Answer(const Bytes& command) const override;
};

class FocusDrive final : public Sensor {
 public:
  std::uint8_t status = 0;  ///< byte 0 of every answer
  Version version = kStandardVersion;
  std::uint16_t checksum = kStandardChecksum;

 private:
  Bytes Answer(const Bytes& command) const override;
};

/// Temperature and pressure: the same answer to everything.
class TemperatureSensor final : public Sensor {
 public:
  Bytes answer = {0x00, 0x96, 0x27, 0x94};

 private:
  Bytes Answer(const Bytes& command) const override;
};

/// 7-bit addresses.
constexpr std::uint8_t kAngleAddress = 0x10;
constexpr std::uint8_t kEdmAddress = 0x16;
constexpr std::uint8_t kFocusAddress = 0x38;
constexpr std::uint8_t kTemperatureAddress = 0x60;

struct SensorSet {
  EdmSensor edm;
  AngleSensor angle;
  FocusDrive focus;
  TemperatureSensor temperature;
};

/// All sensors, and one transfer or one look at a time. Any thread.
class Sensors {
 public:
  /// The instrument's one set.
  static Sensors& Instance();

  /// Calls `work` with the set; no transfer runs meanwhile.
  template <class Work>
  auto Use(Work work) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return work(set_);
  }

  /// Sends to the sensor at the address, then reads as many bytes as `read` holds (null: none). False when no sensor
  /// is present there.
  bool Transfer(std::uint8_t address, const Bytes& sent, Bytes* read);

  /// As delivered: all present, no command, the standard values.
  void Reset();

 private:
  Sensor* Find(std::uint8_t address);

  std::mutex mutex_;
  SensorSet set_;  // guarded by mutex_
};

}  // namespace host::instrument

#endif
