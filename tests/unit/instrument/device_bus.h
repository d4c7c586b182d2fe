// The simulated devices as delivered, and short words for using them as the library does.
#ifndef QXTEST_UNIT_INSTRUMENT_DEVICE_BUS_H
#define QXTEST_UNIT_INSTRUMENT_DEVICE_BUS_H

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "common/calls/calls.h"
#include "instrument/drivers.h"
#include "instrument/sensors.h"

namespace qxtest {

constexpr DWORD kI2cCode = 0xA8D42000;
constexpr DWORD kGpioCode = 0xE7702004;

/// Devices at their standard values, no faults, and a call log that is on and empty. Leaves it the same.
class Devices : public testing::Test {
 protected:
  Devices();
  ~Devices() override;

  static HANDLE Open(LPCWSTR name);
  static void Fault(const std::string& library, const host::CallValue& call, std::uint32_t error);
  /// Since the test's start, as "library call(argument, ...) = result"; handles are "handle".
  std::vector<std::string> Listed() const;

 private:
  std::uint64_t start_ = 0;
};

/// With the bus open. Bytes are given and compared as hexadecimal text.
class SensorBus : public Devices {
 protected:
  SensorBus() : bus_(Open(u"I2C5:")) {}
  ~SensorBus() override { CloseHandle(bus_); }

  /// The calls' results: true, or false with the last error set.
  bool Write(std::uint8_t address, const std::string& sent) const;
  /// What has been read, or "error N".
  std::string Read(std::uint8_t address, DWORD count) const { return Transfer(address, "", count); }
  std::string Transfer(std::uint8_t address, const std::string& sent, DWORD count) const;
  /// Writes, then reads: the answer to a command.
  std::string Answer(std::uint8_t address, const std::string& sent, DWORD count) const;

  template <class Work>
  static auto Use(Work work) {
    return host::instrument::Sensors::Instance().Use(work);
  }

  const HANDLE bus_;
};

}  // namespace qxtest

#endif
