// A real service on an instrument with its devices as delivered; the bytes on the sensors' bus, and the mutexes by
// which processes share it.
#ifndef QXTEST_UNIT_DEVICES_DEVICE_SERVICE_H
#define QXTEST_UNIT_DEVICES_DEVICE_SERVICE_H

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "instrument/other_process.h"
#include "instrument/sensors.h"
#include "unit/services/controller_service.h"

namespace qxtest {

// The mutexes of the sensors and of the output lines.
constexpr char kDistanceMutex[] = "KORAX-HALBERN.RZM.I2CEdmMtx";
constexpr char kSecondDistanceMutex[] = "KORAX-HALBERN.RZM.I2CEdmMtx2";
constexpr char kTiltMutex[] = "KORAX-HALBERN.RZM.I2CSensorMtx";
constexpr char kTemperatureMutex[] = "KORAX-HALVERN.RZM.I2CTempPressMtx";
constexpr char kFocusMutex[] = "KORAX-HALVERN.RZM.I2CFocusMtx";
constexpr char kLinesMutex[] = "KORAX-HALVERN.RZM.GPIOLaipacMtx";
constexpr const char* kSensorMutexes[] = {kDistanceMutex, kSecondDistanceMutex, kTiltMutex, kTemperatureMutex,
                                          kFocusMutex};

/// Whether some process has made the mutex.
bool MutexExists(const std::string& name);
/// Those of the six mutexes that another process cannot have now.
Texts HeldMutexes();

/// Makes a device's call fail with an error, from the nth one on, so many times.
void FailDevice(const std::string& device, const std::string& call, std::uint64_t times = kForGood,
                std::uint64_t nth = 1);
/// Makes a platform's or device's call so much later; `on` one name only, unless it is empty.
void DelayCall(const std::string& library, const host::CallValue& call, std::chrono::milliseconds time,
               const std::string& on = {});

/// The devices' calls since a number, as "write 16 C01D", "read 16 3 = 00EEFF" (addresses and bytes in hexadecimal
/// digits), "control 14 1", "open", "close"; with " fails" when it failed.
Texts DeviceCalls(const std::string& device, std::uint64_t since);

/// Sensors, lines, radio, store and what the controller says of itself at their standard values. Leaves them the same,
/// with the drivers loaded that a test has unloaded.
class StandardDevices {
 public:
  StandardDevices();
  StandardDevices(const StandardDevices&) = delete;
  StandardDevices& operator=(const StandardDevices&) = delete;
  ~StandardDevices();

  template <class Work>
  static auto Sensors(Work work) {
    return host::instrument::Sensors::Instance().Use(work);
  }
  static void SetDistanceMeterType(std::uint8_t type);

 private:
  static void Reset();
};

/// Stands before a device and looks which mutexes are held at each of its calls. It has to be there before the device
/// is opened, and leaves it as it was.
class WatchedDevice {
 public:
  explicit WatchedDevice(std::string name);
  WatchedDevice(const WatchedDevice&) = delete;
  WatchedDevice& operator=(const WatchedDevice&) = delete;
  ~WatchedDevice();

  /// One text for each call since it was last asked: the mutexes held, "" for none.
  Texts TakeHeld();
  /// The last opening: access, share, disposition and flags.
  std::vector<DWORD> opening() const { return opening_; }

 private:
  class Watch;
  void Look();

  const std::string name_;
  HANDLE device_;
  std::mutex mutex_;
  Texts held_;  // guarded by mutex_
  std::vector<DWORD> opening_;
};

class DeviceService : public StandardDevices, public ControllerService {
 public:
  /// Since the start or the last ForgetBus.
  Texts Bus() const { return DeviceCalls("I2C5:", begin_); }
  Texts Lines() const { return DeviceCalls("GIO1:", begin_); }
  void ForgetBus() { begin_ = host::TakeCallNumber() + 1; }

  /// A command's answer, and what it did on the bus.
  std::string Answer(const std::string& command);
  /// Sends a command and waits until its handler is about to begin; the answer is Rest()'s.
  void Begin(const std::string& command);
  /// What comes up to the ACK of a command that has begun: "ok", or the reply's text.
  std::string Rest();

 private:
  std::uint64_t begin_ = host::TakeCallNumber() + 1;
};

/// Milliseconds that some work takes.
template <class Work>
double MillisecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace qxtest

#endif
