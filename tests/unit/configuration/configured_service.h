// A real service on an instrument with its standard configuration: for the tests of parameters, equipment, constants
// and parameter blocks. The test plays the controller and the instrument's owner.
#ifndef QXTEST_UNIT_CONFIGURATION_CONFIGURED_SERVICE_H
#define QXTEST_UNIT_CONFIGURATION_CONFIGURED_SERVICE_H

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "instrument/parameters.h"
#include "instrument/sensors.h"
#include "unit/services/controller_service.h"

namespace qxtest {

/// Parameters, store, parameter block, sensors and output lines as delivered. Leaves them the same. Bytes are given and
/// told as hexadecimal digits.
class DeliveredConfiguration {
 public:
  DeliveredConfiguration();
  DeliveredConfiguration(const DeliveredConfiguration&) = delete;
  DeliveredConfiguration& operator=(const DeliveredConfiguration&) = delete;
  ~DeliveredConfiguration();

  static host::instrument::ParameterValues parameters();
  static void SetParameters(const host::instrument::ParameterValues& values);

  /// "none" when there is none.
  static std::string Item(std::uint32_t item);
  static void SetItem(std::uint32_t item, const std::string& bytes);
  /// An item of one value, as it lies in memory.
  template <class Value>
  static void SetValue(std::uint32_t item, const Value& value) {
    SetItem(item, DigitsOf(&value, sizeof value));
  }
  static void SetBrandAndName(const std::u16string& text);
  static void RemoveItem(std::uint32_t item);

  static std::string Block(std::uint8_t number);
  static void SetBlock(std::uint8_t number, const std::string& bytes);

  template <class Work>
  static auto UseSensors(Work work) {
    return host::instrument::Sensors::Instance().Use(work);
  }
  /// The level of an output line; -1 when it has never been driven.
  static int Line(std::uint32_t line);

  /// Makes calls of a driver or library fail, from the nth on, so many times.
  static void FailCalls(const std::string& library, const std::string& call, std::uint64_t nth = 1,
                        std::uint64_t times = kForGood);
  /// Makes a call come that much later.
  static void DelayCall(const std::string& library, const std::string& call, std::uint32_t milliseconds,
                        std::uint64_t nth = 1);

  static std::string DigitsOf(const void* bytes, std::size_t count);

 private:
  static void Deliver();
};

class ConfiguredService : public DeliveredConfiguration, public ControllerService {
 public:
  /// The calls of these libraries in their order since the start or the last Forget: "write(16, 081102, 0)",
  /// "62(A90201, 01)" with the item's identifier in hexadecimal, "control(14, 1)".
  Texts CallsOf(const Texts& libraries) const;
  void Forget() { begin_ = host::TakeCallNumber() + 1; }

 private:
  std::uint64_t begin_ = host::TakeCallNumber() + 1;
};

/// The fixture of all these tests, with a window that gets the notices.
class Configuration : public testing::Test {
 protected:
  Configuration();

  std::string Answer(const std::string& command) { return service_.Answer(command); }
  Texts Transfers() const { return service_.CallsOf({"I2C5:", "GIO1:"}); }
  Texts StoreCalls() const { return service_.CallsOf({"QxSystem"}); }
  /// The notices since the last time, as "code detail".
  Texts Notices();

  ConfiguredService service_;
  TestWindow window_;

 private:
  std::size_t told_ = 0;
};

/// Another process's hold on a named mutex.
class OtherOwner {
 public:
  explicit OtherOwner(const std::u16string& name);
  OtherOwner(const OtherOwner&) = delete;
  OtherOwner& operator=(const OtherOwner&) = delete;
  ~OtherOwner();

  /// Takes the mutex when it is free, and gives it back.
  bool IsFree() const;

 private:
  HANDLE mutex_;
};

}  // namespace qxtest

#endif
