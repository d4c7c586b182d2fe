// The mutexes by which processes share the sensors: which one a command holds, from when to when, and what another
// process that holds it means for the command.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>

#include "commands/instrument/devices/gpio.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "common/text/utf.h"
#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

using host::instrument::OtherProcess;

class SensorMutexes : public testing::Test {
 protected:
  /// The mutexes held at the command's transfers, each time the same; none may be held before or after.
  std::string HeldAt(const std::string& command) {
    watched_.TakeHeld();
    EXPECT_EQ(HeldMutexes(), Texts{}) << command;
    service_.Answer(command);
    EXPECT_EQ(HeldMutexes(), Texts{}) << command;
    const Texts held = watched_.TakeHeld();
    EXPECT_FALSE(held.empty()) << command;
    for (const std::string& one : held) EXPECT_EQ(one, held.front()) << command;
    return held.empty() ? std::string() : held.front();
  }
  /// The answer to a command while another process has a mutex, given up once the command waits for it.
  std::string AnswerWhileTaken(const std::string& mutex, const std::string& command) {
    OtherProcess other;
    EXPECT_TRUE(other.Take(mutex, std::chrono::milliseconds(0)));
    service_.Begin(command);
    EXPECT_EQ(service_.line.Take(), "");
    EXPECT_EQ(service_.Bus(), Texts{});
    other.Release(mutex);
    return service_.Rest();
  }

  WatchedDevice watched_{"I2C5:"};
  DeviceService service_;
};

TEST_F(SensorMutexes, AreChosenByTheAddress) {
  EXPECT_EQ(HeldAt("CM_I2C,ADR=2C"), kDistanceMutex);
  EXPECT_EQ(HeldAt("CM_I2C,ADR=42"), kSecondDistanceMutex);
  EXPECT_EQ(HeldAt("CM_I2C,ADR=20"), kTiltMutex);
  EXPECT_EQ(HeldAt("CM_I2C,ADR=C0"), kTemperatureMutex);
  EXPECT_EQ(HeldAt("CM_I2C,ADR=70"), kFocusMutex);
}

TEST_F(SensorMutexes, AreTheDistanceMetersForEveryOtherAddress) {
  for (const char* address : {"44", "00", "FF", "21", "71", "10"}) {
    EXPECT_EQ(HeldAt(std::string("CM_I2C,ADR=") + address), kDistanceMutex) << address;
  }
}

TEST_F(SensorMutexes, AreHeldDuringWriteAndReadAlike) {
  EXPECT_EQ(HeldAt("CM_I2C,ADR=70,SDT=C007,RBT=5"), kFocusMutex);
  EXPECT_EQ(HeldAt("CM_I2C,ADR=C0,SDT=C007,RBT=5"), kTemperatureMutex);
}

TEST_F(SensorMutexes, AreHeldByEachQuestionToAComponent) {
  EXPECT_EQ(HeldAt("GT_PIF,NAM=EDM,VER"), kDistanceMutex);
  EXPECT_EQ(HeldAt("GT_PIF,NAM=EDMFPGA,VER"), kDistanceMutex);
  EXPECT_EQ(HeldAt("GT_PIF,NAM=ANGLE,VER"), kTiltMutex);
  EXPECT_EQ(HeldAt("GT_PIF,NAM=FOCUS,VER,SUM"), kFocusMutex);
}

TEST_F(SensorMutexes, AreHeldWhileConstantsAndSwitchesAreReadAndWritten) {
  EXPECT_EQ(HeldAt("GT_CST,ED_OFS"), kDistanceMutex);
  EXPECT_EQ(HeldAt("GT_CST,TL_XSL"), kTiltMutex);
  EXPECT_EQ(HeldAt("ST_CST,ED_OFS=5"), kDistanceMutex);
  EXPECT_EQ(HeldAt("ST_CST,TL_XSL=1,TL_YSL=2"), kTiltMutex);
  EXPECT_EQ(HeldAt("ST_EQP,TLT=1"), kTiltMutex);
}

TEST_F(SensorMutexes, AreGivenUpAfterAFailure) {
  FailDevice("I2C5:", "read");
  EXPECT_EQ(HeldAt("CM_I2C,ADR=70,RBT=1"), kFocusMutex);
  EXPECT_EQ(HeldAt("GT_PIF,NAM=ANGLE,VER"), kTiltMutex);
  EXPECT_EQ(HeldAt("GT_CST,ED_OFS"), kDistanceMutex);
  FailDevice("I2C5:", "write");
  EXPECT_EQ(HeldAt("CM_I2C,ADR=42"), kSecondDistanceMutex) << "after four attempts";
  FailDevice("I2C5:", "transfer");
  EXPECT_EQ(HeldAt("CM_I2C,ADR=C0,SDT=01,RBT=1"), kTemperatureMutex);
}

TEST_F(SensorMutexes, AreHeldInThePauseBetweenWriteAndRead) {
  service_.Begin("CM_I2C,ADR=70,SDT=C007,RBT=5,WAT=2000000000");
  EXPECT_TRUE(WaitUntil([this] { return service_.Bus() == Texts{"write 38 C007"}; }));
  EXPECT_EQ(HeldMutexes(), Texts{kFocusMutex});
  service_.manager.Shutdown();  // the pause ends, and with it the transfer
  EXPECT_EQ(service_.Bus(), Texts{"write 38 C007"});
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(SensorMutexes, AreWaitedForUntilTheOtherProcessGivesThemUp) {
  EXPECT_EQ(AnswerWhileTaken(kFocusMutex, "CM_I2C,ADR=70,SDT=C007,RBT=5"), "I2C,STS=SCS,RDT=0001020304");
  EXPECT_EQ(AnswerWhileTaken(kTemperatureMutex, "CM_I2C,ADR=C0"), "I2C,STS=SCS");
  EXPECT_EQ(AnswerWhileTaken(kTiltMutex, "GT_PIF,NAM=ANGLE,VER"), "PIF,NAM=ANGLE,VER=1.2.3.4");
  EXPECT_EQ(AnswerWhileTaken(kDistanceMutex, "GT_CST,ED_OFS"), "CST,ED_OFS=0");
}

TEST_F(SensorMutexes, DoNotHoldUpTransfersWithOtherSensors) {
  OtherProcess other;
  for (const char* mutex : {kDistanceMutex, kSecondDistanceMutex, kTemperatureMutex, kFocusMutex, kLinesMutex}) {
    EXPECT_TRUE(other.Take(mutex, std::chrono::milliseconds(0)));
  }
  EXPECT_EQ(service_.Answer("CM_I2C,ADR=20"), "I2C,STS=SCS");
  EXPECT_EQ(service_.Answer("GT_PIF,NAM=OS"), "PIF,NAM=Windows CE ENG");
}

TEST_F(SensorMutexes, AreTakenFromAProcessThatHasDiedWithThem) {
  std::thread([] {
    const HANDLE mutex = host::CreateMutexW(nullptr, TRUE, host::Utf8ToWide(kFocusMutex).c_str());
    EXPECT_EQ(host::WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    host::CloseHandle(mutex);
  }).join();
  EXPECT_EQ(service_.Answer("CM_I2C,ADR=70"), "I2C,STS=SCS");
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(SensorMutexes, ThatThePlatformRefusesFailTheTransfer) {
  {
    const Failing waits("WaitForMultipleObjects", ERROR_INVALID_HANDLE, 1, kForGood);
    EXPECT_EQ(service_.Answer("CM_I2C,ADR=20,SDT=0001,RBT=2"), "I2C,STS=ER_FAL,RDT=");
    EXPECT_EQ(service_.Bus(), Texts{});
    EXPECT_EQ(service_.Answer("GT_PIF,NAM=ANGLE,VER"), "ER_FAL");
    EXPECT_EQ(service_.Answer("ST_EQP,TLT=1"), "ok") << "whether the sensor hears of it does not matter";
  }
  EXPECT_EQ(service_.Answer("CM_I2C,ADR=20,SDT=0001,RBT=2"), "I2C,STS=SCS,RDT=0001");
}

// ---- Output lines

class LineMutex : public testing::Test {
 protected:
  WatchedDevice watched_{"GIO1:"};
  DeviceService service_;
  const qxcm::Event never_;
};

TEST_F(LineMutex, IsHeldWhileTheDeviceIsOpenedAndDriven) {
  EXPECT_EQ(service_.Answer("ST_EQP,L2P=1"), "ok");
  EXPECT_EQ(watched_.TakeHeld(), (Texts{kLinesMutex, kLinesMutex}));
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(LineMutex, IsGivenUpAfterAFailure) {
  FailDevice("GIO1:", "control");
  EXPECT_EQ(qxcm::SetGpioLine(14, true, never_), -101);
  EXPECT_EQ(watched_.TakeHeld(), (Texts{kLinesMutex, kLinesMutex}));
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(LineMutex, IsWaitedForUntilTheOtherProcessGivesItUp) {
  OtherProcess other;
  EXPECT_TRUE(other.Take(kLinesMutex, std::chrono::milliseconds(0)));
  service_.Begin("ST_EQP,L2P=1");
  EXPECT_EQ(service_.Lines(), Texts{});
  other.Release(kLinesMutex);
  EXPECT_EQ(service_.Rest(), "ok");
  EXPECT_EQ(service_.Lines(), Texts{"control 14 1"});
}

TEST_F(LineMutex, LeavesNoHandleBehind) {
  const std::size_t handles = host::LibraryHandles();
  EXPECT_EQ(qxcm::SetGpioLine(14, true, never_), 0);
  EXPECT_EQ(host::LibraryHandles(), handles);
  EXPECT_FALSE(MutexExists(kLinesMutex));
}

}  // namespace
}  // namespace qxtest
