#include "instrument/gpio.h"

#include <array>
#include <cstring>

#include "common/calls/entry.h"
#include "instrument/driver_stream.h"

namespace host::instrument {
namespace {

constexpr char kDriverName[] = "GIO1:";
constexpr DWORD kDriveCode = 0xE7702004;

class GpioDriver final : public DriverStream {
 public:
  std::string Name() const override { return kDriverName; }
  BOOL Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned) override;
};

BOOL GpioDriver::Control(DWORD code, const void* in, DWORD in_bytes, void*, DWORD out_bytes, DWORD*) {
  if (code != kDriveCode) return Fail(ERROR_NOT_SUPPORTED, FALSE);
  std::array<std::uint32_t, 2> words = {};
  if (in_bytes != sizeof words || out_bytes != 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  std::memcpy(words.data(), in, sizeof words);
  const auto [line, level] = words;
  const auto drive = [line = line, level = level]() -> BOOL {
    return Gpio::Instance().Drive(line, level) ? TRUE : Fail(ERROR_INVALID_PARAMETER, FALSE);
  };
  return Entry(
      kDriverName, "control", true,
      [&] {
        return CallValues{words[0], words[1]};
      },
      drive);
}

}  // namespace

Gpio& Gpio::Instance() {
  static auto* gpio = new Gpio;  // lines may still be driven while the process ends
  return *gpio;
}

bool Gpio::Drive(std::uint32_t line, std::uint32_t level) {
  if (line >= kLines || level > 1) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  levels_[line] = level;
  return true;
}

std::map<std::uint32_t, std::uint32_t> Gpio::levels() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return levels_;
}

void Gpio::Reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  levels_ = {{kAlwaysShown, 0}};
}

void LoadGpioDriver() { RegisterDriver<GpioDriver>(kDriverName); }
void UnloadGpioDriver() { UnregisterDevice(kDriverName); }

}  // namespace host::instrument
