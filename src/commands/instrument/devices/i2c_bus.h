// The sensors' bus. Every transfer to a sensor is made while its system-wide mutex is held: other processes use the
// same bus.
#ifndef QXCM_COMMANDS_INSTRUMENT_DEVICES_I2C_BUS_H
#define QXCM_COMMANDS_INSTRUMENT_DEVICES_I2C_BUS_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "platform/event.h"
#include "platform/handle.h"
#include "platform/shared_block.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Thrown while a service is built ("cannot open I2C port."); never leaves the library.
class i2c_io_exception : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a handler returns when a transfer has failed.
constexpr std::int32_t kTransferFailed = -101;

// Addresses in their 8-bit form; the driver is given the upper seven bits.
constexpr std::uint8_t kDistanceMeter = 0x2C;
constexpr std::uint8_t kSecondDistanceMeter = 0x42;
constexpr std::uint8_t kTiltSensor = 0x20;
constexpr std::uint8_t kTemperaturePressure = 0xC0;
constexpr std::uint8_t kFocusDrive = 0x70;

/// The bus and the mutexes of its sensors, opened for the life of a service. Any thread.
class I2cBus {
 public:
  /// Throws i2c_io_exception, or std::runtime_error when the platform has no mutex to give.
  I2cBus();

  /// The mutex of the sensor at an address; every other address has the distance meter's.
  NamedMutex& MutexOf(std::uint8_t address);
  HANDLE port() const { return port_.get(); }

 private:
  NamedMutex distance_meter_;
  NamedMutex second_distance_meter_;
  NamedMutex tilt_sensor_;
  NamedMutex temperature_pressure_;
  NamedMutex focus_drive_;
  Handle port_;
};

using Bytes = std::vector<std::uint8_t>;

/// One sequence of transfers with a sensor: holds its mutex from construction to the end, also after a failure. One
/// thread. Every wait ends early, and the transfer fails, once `give_up` is set; so it does when the platform refuses
/// to wait for the mutex.
class I2cSession {
 public:
  I2cSession(I2cBus& bus, std::uint8_t address, const Event& give_up);
  I2cSession(const I2cSession&) = delete;
  I2cSession& operator=(const I2cSession&) = delete;
  ~I2cSession();

  /// Sends the bytes behind the address: up to so many attempts, 1 ms before the first and `pause` milliseconds before
  /// each further one.
  bool Write(const Bytes& bytes, int attempts = 40, DWORD pause = 50);
  /// Reads so many bytes.
  bool Read(std::size_t count, Bytes* bytes);
  /// Sends and reads in one transfer.
  bool Transfer(const Bytes& bytes, std::size_t count, Bytes* answer);
  /// Gives the sensor its time; false when that was cut short.
  bool Wait(DWORD milliseconds);

 private:
  bool Control(const Bytes& bytes, Bytes* answer);

  I2cBus& bus_;
  const std::uint8_t address_;
  const Event& give_up_;
  NamedMutex& mutex_;
  bool held_ = false;
};

}  // namespace qxcm

#endif
