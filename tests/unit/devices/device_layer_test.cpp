// The device layer by itself: how the bus is opened, the sensors' byte sequences, the output lines.
#include <gtest/gtest.h>

#include <future>
#include <iterator>
#include <string>
#include <thread>

#include "commands/instrument/devices/gpio.h"
#include "commands/instrument/devices/i2c_bus.h"
#include "commands/instrument/devices/sensors.h"
#include "common/kernel/handles.h"
#include "instrument/gpio.h"
#include "instrument/i2c_bus.h"
#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

using qxcm::I2cBus;
using qxcm::I2cSession;
using namespace std::chrono_literals;

Texts ExistingMutexes() {
  Texts existing;
  for (const char* name : kSensorMutexes) {
    if (MutexExists(name)) existing.emplace_back(name);
  }
  return existing;
}

Texts SensorMutexNames(std::size_t count) { return {std::begin(kSensorMutexes), std::begin(kSensorMutexes) + count}; }

std::string ErrorOfOpeningTheBus() {
  try {
    const I2cBus bus;
  } catch (const qxcm::i2c_io_exception& error) {
    return error.what();
  } catch (const std::runtime_error& error) {
    return std::string("other: ") + error.what();
  }
  return "";
}

class Bus : public testing::Test {
 protected:
  ~Bus() override { EXPECT_EQ(host::LibraryHandles(), handles_) << "handles are left"; }
  const std::size_t handles_ = host::LibraryHandles();
  StandardDevices devices_;
  InstrumentAtRest instrument_;
};

// ---- Opening

TEST_F(Bus, MakesTheFiveMutexesInTheirOrder) {
  for (std::size_t count = 1; count < std::size(kSensorMutexes); ++count) {
    DelayCall("COREDLL", "CreateMutexW", 250ms, kSensorMutexes[count]);
    const auto opening = std::async(std::launch::async, [] { const I2cBus bus; });
    EXPECT_TRUE(WaitUntil([&] { return MutexExists(kSensorMutexes[count - 1]); }));
    EXPECT_EQ(ExistingMutexes(), SensorMutexNames(count));
    opening.wait();
    host::ClearFaults();
  }
}

TEST_F(Bus, IsOpenedAfterTheMutexesAndAnnouncedLast) {
  DelayCall("I2C5:", "open", 250ms);
  const auto opening = std::async(std::launch::async, [] { const I2cBus bus; });
  EXPECT_TRUE(WaitUntil([] { return MutexExists(kSensorMutexes[4]); }));
  EXPECT_EQ(ExistingMutexes(), SensorMutexNames(5));
  EXPECT_EQ(instrument_.Calls({12}), Texts{});
  opening.wait();
  EXPECT_EQ(instrument_.Calls({12}), Texts{"12()"});
}

TEST_F(Bus, IsOpenedForReadingAndWritingAndShared) {
  const WatchedDevice watched("I2C5:");
  { const I2cBus bus; }
  EXPECT_EQ(watched.opening(), (std::vector<DWORD>{GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL}));
}

TEST_F(Bus, KeepsPortAndMutexesAsLongAsItLives) {
  const std::uint64_t begin = host::TakeCallNumber();
  {
    const I2cBus bus;
    EXPECT_EQ(DeviceCalls("I2C5:", begin), Texts{"open"});
    EXPECT_EQ(ExistingMutexes(), SensorMutexNames(5));
  }
  EXPECT_EQ(DeviceCalls("I2C5:", begin), (Texts{"open", "close"}));
  EXPECT_EQ(ExistingMutexes(), Texts{});
}

TEST_F(Bus, ThrowsWhenItCannotBeOpened) {
  FailDevice("I2C5:", "open");
  EXPECT_EQ(ErrorOfOpeningTheBus(), "cannot open I2C port.");
  EXPECT_EQ(instrument_.Calls({12}), Texts{});
  EXPECT_EQ(ExistingMutexes(), Texts{});
  host::instrument::UnloadI2cDriver();
  EXPECT_EQ(ErrorOfOpeningTheBus(), "cannot open I2C port.");
}

TEST_F(Bus, ThrowsWhenThePlatformHasNoMutexToGive) {
  for (std::uint64_t nth = 1; nth <= 5; ++nth) {
    const Failing fault("CreateMutexW", ERROR_NOT_ENOUGH_MEMORY, nth);
    EXPECT_EQ(ErrorOfOpeningTheBus(), "other: Mutex create failed.");
    EXPECT_EQ(ExistingMutexes(), Texts{});
  }
}

TEST_F(Bus, DoesNotLookAtTheAnnouncementsResult) {
  instrument_.Fail(12, -1);
  EXPECT_EQ(ErrorOfOpeningTheBus(), "");
}

// ---- Transfers

class Session : public Bus {
 protected:
  qxcm::Event give_up_;
  I2cBus bus_;
  const std::uint64_t begin_ = host::TakeCallNumber();
  Texts Calls() const { return DeviceCalls("I2C5:", begin_); }
};

TEST_F(Session, MakesNoAttemptWhenNoneIsAllowed) {
  I2cSession session(bus_, qxcm::kTiltSensor, give_up_);
  EXPECT_FALSE(session.Write({1}, 0, 0));
  EXPECT_FALSE(session.Write({1}, -1, 0));
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(Session, TriesFortyTimesUnlessToldOtherwise) {
  I2cSession session(bus_, 0x44, give_up_);
  EXPECT_FALSE(session.Write({1}, 40, 0));
  EXPECT_EQ(Calls(), Texts(40, "write 22 01 fails"));
}

TEST_F(Session, FailsAtOnceWhenItIsToGiveUp) {
  give_up_.Set();
  I2cSession session(bus_, qxcm::kTiltSensor, give_up_);
  qxcm::Bytes bytes;
  EXPECT_FALSE(session.Write({1}));
  EXPECT_FALSE(session.Read(1, &bytes));
  EXPECT_FALSE(session.Transfer({1}, 1, &bytes));
  EXPECT_FALSE(session.Wait(0));
  EXPECT_EQ(Calls(), Texts{});
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(Session, WaitsInTimeAlsoWhenThePlatformRefusesToWait) {
  I2cSession session(bus_, qxcm::kTiltSensor, give_up_);
  const Failing waits("WaitForSingleObject", ERROR_INVALID_HANDLE, 1, kForGood);
  const double time = MillisecondsOf([&] { EXPECT_TRUE(session.Wait(100)); });
  EXPECT_GE(time, 99) << "the tick that it begins in may be nearly over";
  EXPECT_LE(time, 200);
}

TEST_F(Session, SeesInTimeThatItIsToGiveUpAlsoWhenTheEventIsNotSet) {
  I2cSession session(bus_, qxcm::kTiltSensor, give_up_);
  const Failing sets("EventModify", ERROR_INVALID_HANDLE, 1, kForGood);
  const auto setting = std::async(std::launch::async, [&] {
    std::this_thread::sleep_for(50ms);
    give_up_.Set();
  });
  EXPECT_LE(MillisecondsOf([&] { EXPECT_FALSE(session.Wait(10000)); }), 1500);
}

// ---- The sensors' sequences

class SensorSequences : public testing::Test {
 protected:
  DeviceService service_;
  qxcm::CommandProcessor& processor_ = service_.manager.processor();
};

TEST_F(SensorSequences, ReadTheDistanceOffsetLowByteFirst) {
  for (const int offset : {0, 1, -1, 0x1234, 32767, -32768}) {
    service_.Sensors([=](auto& sensors) { sensors.edm.offset = static_cast<std::int16_t>(offset); });
    std::int16_t raw = 77;
    EXPECT_TRUE(qxcm::ReadDistanceOffset(processor_, &raw));
    EXPECT_EQ(raw, offset);
  }
  EXPECT_EQ(service_.Bus().at(0), "write 16 C01D");
  EXPECT_EQ(service_.Bus().at(7), "read 16 3 = 003412");
}

TEST_F(SensorSequences, WriteTheDistanceOffsetAndStoreIt) {
  EXPECT_TRUE(qxcm::WriteDistanceOffset(processor_, 0xFF06));
  EXPECT_EQ(service_.Bus(), (Texts{"write 16 001D06FF", "write 16 40C3"}));
  EXPECT_EQ(service_.Sensors([](auto& sensors) { return sensors.edm.offset; }), -250);
}

TEST_F(SensorSequences, ReadTheTiltPairHighByteFirst) {
  service_.Sensors([](auto& sensors) {
    sensors.angle.x = 0x1234;
    sensors.angle.y = 0xFEDC;
  });
  qxcm::TiltPair pair;
  EXPECT_TRUE(qxcm::ReadTiltPair(processor_, &pair));
  EXPECT_EQ(pair.x, 0x1234);
  EXPECT_EQ(pair.y, 0xFEDC);
  EXPECT_EQ(service_.Bus(), (Texts{"write 10 0011", "read 10 5 = 001234FEDC"}));
}

TEST_F(SensorSequences, WriteTheTiltPairAndItsSwitch) {
  EXPECT_TRUE(qxcm::WriteTiltPair(processor_, {0x1234, 0xFEDC}));
  EXPECT_TRUE(qxcm::WriteTiltSwitch(processor_, 2));
  EXPECT_EQ(service_.Bus(), (Texts{"write 10 08101234FEDC", "write 10 081102"}));
}

TEST_F(SensorSequences, FailWhenATransferFails) {
  FailDevice("I2C5:", "read");
  std::int16_t raw = 0;
  qxcm::TiltPair pair;
  EXPECT_FALSE(qxcm::ReadDistanceOffset(processor_, &raw));
  EXPECT_FALSE(qxcm::ReadTiltPair(processor_, &pair));
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(SensorSequences, TryInTimeFortyTimesAndDoNotStoreWhatWasNotWritten) {
  service_.Sensors([](auto& sensors) { sensors.edm.present = false; });
  const double time = MillisecondsOf([&] { EXPECT_FALSE(qxcm::WriteDistanceOffset(processor_, 1)); });
  EXPECT_EQ(service_.Bus(), Texts(40, "write 16 001D0100 fails"));
  EXPECT_GE(time, 1 + 39 * 50);
  EXPECT_LE(time, 1 + 39 * 50 + 300);
}

TEST_F(SensorSequences, GiveTheDistanceMeterInTimeItsTenMilliseconds) {
  std::int16_t raw = 0;
  EXPECT_GE(MillisecondsOf([&] { qxcm::ReadDistanceOffset(processor_, &raw); }), 1 + 10);
  EXPECT_GE(MillisecondsOf([&] { qxcm::WriteDistanceOffset(processor_, 0); }), 1 + 10 + 1);
}

// ---- Output lines

class SetGpioLine : public Bus {
 protected:
  std::int32_t Set(std::uint32_t line, bool high) { return qxcm::SetGpioLine(line, high, never_); }
  Texts Calls() const { return DeviceCalls("GIO1:", begin_); }
  const qxcm::Event never_;
  const std::uint64_t begin_ = host::TakeCallNumber();
};

TEST_F(SetGpioLine, OpensDrivesAndClosesEachTime) {
  EXPECT_EQ(Set(14, true), 0);
  EXPECT_EQ(Set(3, false), 0);
  EXPECT_EQ(Calls(), (Texts{"open", "control 14 1", "close", "open", "control 3 0", "close"}));
  const auto levels = host::instrument::Gpio::Instance().levels();
  EXPECT_EQ(levels.at(14), 1u);
  EXPECT_EQ(levels.at(3), 0u);
}

TEST_F(SetGpioLine, FailsWithoutItsDevice) {
  host::instrument::UnloadGpioDriver();
  EXPECT_EQ(Set(14, true), -101);
  EXPECT_FALSE(MutexExists(kLinesMutex));
}

TEST_F(SetGpioLine, FailsWhenTheDeviceRefuses) {
  EXPECT_EQ(Set(128, true), -101) << "no such line";
  FailDevice("GIO1:", "open", 1);
  EXPECT_EQ(Set(14, true), -101);
  EXPECT_EQ(Calls(), (Texts{"open", "control 128 1 fails", "close", "open fails"}));
}

TEST_F(SetGpioLine, FailsWhenThePlatformRefusesTheMutex) {
  {
    const Failing mutexes("CreateMutexW", ERROR_NOT_ENOUGH_MEMORY, 1, kForGood);
    EXPECT_EQ(Set(14, true), -101);
  }
  const Failing waits("WaitForMultipleObjects", ERROR_INVALID_HANDLE, 1, kForGood);
  EXPECT_EQ(Set(14, true), -101);
  EXPECT_EQ(Calls(), Texts{});
}

TEST_F(SetGpioLine, GivesUpWaitingForAnotherProcess) {
  host::instrument::OtherProcess other;
  EXPECT_TRUE(other.Take(kLinesMutex, 0ms));
  qxcm::Event give_up;
  auto setting = std::async(std::launch::async, [&] { return qxcm::SetGpioLine(14, true, give_up); });
  EXPECT_EQ(setting.wait_for(50ms), std::future_status::timeout);
  give_up.Set();
  EXPECT_EQ(setting.get(), -101);
  EXPECT_EQ(Calls(), Texts{});
}

}  // namespace
}  // namespace qxtest
