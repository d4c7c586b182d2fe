// The driver of the sensors' bus: how it is opened and called, what is listed, what faults do.
#include "instrument/i2c_bus.h"

#include <thread>

#include "unit/instrument/device_bus.h"

namespace qxtest {
namespace {

using Lines = std::vector<std::string>;

class I2cBus : public SensorBus {
 protected:
  /// The last error of a call with the first bytes of a buffer; 0 when it succeeds.
  DWORD Error(DWORD code, DWORD in_bytes, DWORD out_bytes = 0) {
    SetLastError(0);
    buffer_[0] = host::instrument::kEdmAddress;
    const BOOL done =
        DeviceIoControl(bus_, code, buffer_, in_bytes, out_bytes == 0 ? nullptr : buffer_, out_bytes, nullptr, nullptr);
    return done ? 0 : GetLastError();
  }

  std::uint8_t buffer_[2048] = {};
};

TEST_F(I2cBus, IsSharedByAllWhoOpenIt) {
  const HANDLE other = Open(u"i2c5:");
  EXPECT_NE(other, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(CloseHandle(other));
  EXPECT_TRUE(Write(host::instrument::kEdmAddress, "C007"));
}

TEST_F(I2cBus, IsOpenedAsWhatExistsOnly) {
  const auto error = [](DWORD disposition, DWORD flags) {
    const HANDLE bus = CreateFileW(u"I2C5:", GENERIC_READ, 0, nullptr, disposition, flags, nullptr);
    return bus == INVALID_HANDLE_VALUE ? GetLastError() : CloseHandle(bus) ? 0 : 1;
  };
  EXPECT_EQ(error(OPEN_EXISTING, 0), 0u);
  EXPECT_EQ(error(CREATE_NEW, FILE_ATTRIBUTE_NORMAL), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(error(OPEN_EXISTING, 0x40000000), ERROR_INVALID_PARAMETER);
}

TEST_F(I2cBus, IsNotFoundWithoutItsDriver) {
  host::instrument::UnloadI2cDriver();
  EXPECT_EQ(Open(u"I2C5:"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(Write(host::instrument::kEdmAddress, "")) << "what is open stays open";
  host::instrument::LoadDrivers();
  EXPECT_TRUE(CloseHandle(Open(u"I2C5:")));
}

TEST_F(I2cBus, TakesLessThan1024BytesWithTheAddress) {
  EXPECT_EQ(Error(kI2cCode, 0), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Error(kI2cCode, 1), 0u);
  EXPECT_EQ(Error(kI2cCode, 1023), 0u);
  EXPECT_EQ(Error(kI2cCode, 1024), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Error(kI2cCode, 1024, 1), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Error(kI2cCode, 1, 2000), 0u) << "a read may be longer";
}

TEST_F(I2cBus, HasOneOperation) {
  EXPECT_EQ(Error(kI2cCode + 4, 1), ERROR_NOT_SUPPORTED);
  DWORD count = 77;
  EXPECT_FALSE(ReadFile(bus_, buffer_, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
  EXPECT_FALSE(WriteFile(bus_, buffer_, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
  EXPECT_EQ(count, 0u);
}

TEST_F(I2cBus, ListsItsCallsAndNoneOfThePlatforms) {
  EXPECT_TRUE(CloseHandle(Open(u"I2C5:")));
  Write(0x16, "C01D");
  Read(0x16, 3);
  Transfer(0x60, "A1", 2);
  EXPECT_EQ(Listed(), (Lines{"I2C5: open() = handle", "I2C5: open() = handle", "I2C5: close() = 1",
                             "I2C5: write(22, \"C01D\", 0) = 1", "I2C5: read(22, \"\", 3) = \"000000\"",
                             "I2C5: transfer(96, \"A1\", 2) = \"0096\""}));
}

TEST_F(I2cBus, ListsFailedTransfersAsZero) {
  Write(0x21, "00");
  Read(0x21, 2);
  Transfer(0x21, "01", 2);
  Lines listed = Listed();
  listed.erase(listed.begin());
  EXPECT_EQ(listed, (Lines{"I2C5: write(33, \"00\", 0) = 0", "I2C5: read(33, \"\", 2) = 0",
                           "I2C5: transfer(33, \"01\", 2) = 0"}));
}

TEST_F(I2cBus, FaultsMakeATransferFailOnce) {
  Fault("I2C5:", "write", 121);
  Fault("I2C5:", "read", 122);
  Fault("I2C5:", "transfer", 123);
  EXPECT_FALSE(Write(0x10, "081101"));
  EXPECT_EQ(GetLastError(), 121u);
  EXPECT_EQ(Read(0x10, 1), "error 122");
  EXPECT_EQ(Transfer(0x10, "0001", 5), "error 123");
  EXPECT_EQ(Listed().back(), "I2C5: transfer(16, \"0001\", 5) = 0");
  EXPECT_EQ(Use([](auto& set) { return set.angle.tilt_switch; }), 0) << "nothing has been sent";
  EXPECT_EQ(Transfer(0x10, "0001", 5), "0001020304");
}

TEST_F(I2cBus, FaultsMakeOpeningFail) {
  Fault("I2C5:", "open", 55);
  EXPECT_EQ(Open(u"I2C5:"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 55u);
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = "CreateFileW";
  fault.error = 5;
  fault.on = "I2C5:";
  host::AddFault(fault);
  EXPECT_EQ(Open(u"I2C5:"), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
}

// Combined transfers of several threads, each with its own command: none gets another's answer.
TEST_F(I2cBus, KeepsTransfersOfSeveralThreadsApart) {
  constexpr int kTurns = 300;
  std::vector<std::thread> threads;
  const auto ask = [this](const char* sent, const char* answer) {
    for (int turn = 0; turn < kTurns; ++turn) EXPECT_EQ(Transfer(0x16, sent, 5), answer);
  };
  threads.emplace_back(ask, "C007", "0001020304");
  threads.emplace_back(ask, "C009", "0001000001");
  threads.emplace_back(ask, "C008", "003412FFFF");
  threads.emplace_back([] {
    for (int turn = 0; turn < kTurns; ++turn) CloseHandle(Open(u"I2C5:"));
  });
  threads.emplace_back([] {
    for (int turn = 0; turn < kTurns; ++turn) Use([=](auto& set) { set.angle.x = static_cast<std::uint16_t>(turn); });
  });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Listed().size(), 5u * kTurns + 1);
}

}  // namespace
}  // namespace qxtest
