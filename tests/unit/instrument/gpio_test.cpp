// The driver of the output lines.
#include "instrument/gpio.h"

#include <thread>

#include "unit/instrument/device_bus.h"

namespace qxtest {
namespace {

using host::instrument::Gpio;
using Lines = std::vector<std::string>;
using Levels = std::map<std::uint32_t, std::uint32_t>;

class GpioDriver : public Devices {
 protected:
  GpioDriver() : device_(Open(u"GIO1:")) {}
  ~GpioDriver() override { CloseHandle(device_); }

  /// The last error, or 0.
  DWORD Drive(std::uint32_t line, std::uint32_t level) const {
    std::uint32_t words[] = {line, level};
    return Control(kGpioCode, words, sizeof words);
  }
  DWORD Control(DWORD code, void* in, DWORD in_bytes, void* out = nullptr, DWORD out_bytes = 0) const {
    DWORD returned = 77;
    const BOOL done = DeviceIoControl(device_, code, in, in_bytes, out, out_bytes, &returned, nullptr);
    EXPECT_EQ(returned, 0u);
    return done ? 0 : GetLastError();
  }

  const HANDLE device_;
};

TEST_F(GpioDriver, DrivesLines) {
  EXPECT_EQ(Gpio::Instance().levels(), (Levels{{14, 0}}));
  EXPECT_EQ(Drive(14, 1), 0u);
  EXPECT_EQ(Drive(3, 0), 0u);
  EXPECT_EQ(Drive(127, 1), 0u);
  EXPECT_EQ(Gpio::Instance().levels(), (Levels{{3, 0}, {14, 1}, {127, 1}}));
  EXPECT_EQ(Drive(14, 0), 0u);
  EXPECT_EQ(Gpio::Instance().levels().at(14), 0u);
}

TEST_F(GpioDriver, RefusesWhatIsNoLineOrLevel) {
  EXPECT_EQ(Drive(128, 1), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Drive(0xFFFFFFFF, 1), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Drive(14, 2), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Gpio::Instance().levels(), (Levels{{14, 0}}));
}

TEST_F(GpioDriver, RefusesOtherInputAndOperations) {
  std::uint32_t words[3] = {14, 1, 0};
  EXPECT_EQ(Control(kGpioCode, nullptr, 0), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Control(kGpioCode, words, 7), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Control(kGpioCode, words, 12), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Control(kGpioCode, words, 8, words, 4), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Control(kI2cCode, words, 8), ERROR_NOT_SUPPORTED);
  EXPECT_EQ(Gpio::Instance().levels(), (Levels{{14, 0}}));
}

TEST_F(GpioDriver, IsSharedAndListsItsCalls) {
  EXPECT_TRUE(CloseHandle(Open(u"GIO1:")));
  Drive(14, 1);
  Drive(14, 9);
  EXPECT_EQ(Listed(), (Lines{"GIO1: open() = handle", "GIO1: open() = handle", "GIO1: close() = 1",
                             "GIO1: control(14, 1) = 1", "GIO1: control(14, 9) = 0"}));
}

TEST_F(GpioDriver, FaultsKeepTheLineAsItIs) {
  Fault("GIO1:", "control", 31);
  EXPECT_EQ(Drive(14, 1), 31u);
  EXPECT_EQ(Gpio::Instance().levels().at(14), 0u);
  Fault("GIO1:", "open", 2);
  EXPECT_EQ(Open(u"GIO1:"), INVALID_HANDLE_VALUE);
}

TEST_F(GpioDriver, IsNotFoundWithoutItsDriver) {
  host::instrument::UnloadGpioDriver();
  EXPECT_EQ(Open(u"GIO1:"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(GpioDriver, IsDrivenBySeveralThreads) {
  std::vector<std::thread> threads;
  for (std::uint32_t line = 0; line < 4; ++line) {
    threads.emplace_back([this, line] {
      for (std::uint32_t turn = 0; turn <= 100; ++turn) EXPECT_EQ(Drive(line, turn % 2), 0u);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Gpio::Instance().levels(), (Levels{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {14, 0}}));
}

}  // namespace
}  // namespace qxtest
