// Opening and closing services where the sensors' bus is concerned: a bus that is not there, and handlers that wait for
// a sensor while their service is closed.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <string>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "instrument/i2c_bus.h"
#include "support/test_application.h"
#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

using host::instrument::OtherProcess;

class OpeningWithDevices : public testing::Test {
 protected:
  Texts PortOpenings() { return world_.Calls({"CreateFileW"}); }
  StandardDevices devices_;
  World world_;
};

TEST_F(OpeningWithDevices, FailsWithoutTheBusAndLeavesNothingBehind) {
  const std::size_t handles = host::LibraryHandles();
  host::instrument::UnloadI2cDriver();
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_EQ(QCMOpenComm(u"COMBT:"), 0u);
  EXPECT_EQ(host::LibraryHandles(), handles);
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(PortOpenings(), Texts(2, "CreateFileW(I2C5:, 3221225472, 3, null, 3, 128, null)")) << "no serial port";
  for (const char* mutex : kSensorMutexes) EXPECT_FALSE(MutexExists(mutex));
}

TEST_F(OpeningWithDevices, SucceedsOnceTheBusIsThere) {
  FailDevice("I2C5:", "open", 1);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  ASSERT_NE(handle, 0u);
  EXPECT_EQ(world_.controller().Exchange("CM_I2C,ADR=20"), ReplyFrame("I2C,STS=SCS") + std::string(kAck));
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
}

TEST_F(OpeningWithDevices, LeavesTheServicesThatAreOpenAlone) {
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  FailDevice("I2C5:", "open", 1);
  EXPECT_EQ(QCMOpenComm(u"COMBT:"), 0u);
  EXPECT_EQ(world_.controller().Exchange("CM_I2C,ADR=20"), ReplyFrame("I2C,STS=SCS") + std::string(kAck));
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
}

TEST_F(OpeningWithDevices, OpensTheBusBeforeThePortAndTheDispatcher) {
  DelayCall("QxSystem", std::int64_t{12}, std::chrono::milliseconds(250));
  world_.ForgetCalls();
  const std::uint64_t begin = host::TakeCallNumber();
  QCM_HANDLE handle = 0;
  const auto opening = world_.event_window().Start([&] { handle = QCMOpenComm(u"COM5:"); });
  EXPECT_TRUE(WaitUntil([&] { return DeviceCalls("I2C5:", begin) == Texts{"open"}; }));
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(PortOpenings(), Texts{});
  opening.wait();
  EXPECT_EQ(PortOpenings(), Texts{"CreateFileW(COM5:, 3221225472, 0, null, 3, 0, null)"});
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
}

TEST_F(OpeningWithDevices, ClosesTheBusWithTheService) {
  const std::uint64_t begin = host::TakeCallNumber();
  EXPECT_EQ(QCMCloseComm(QCMOpenComm(u"COM5:")), QCM_OK);
  EXPECT_EQ(DeviceCalls("I2C5:", begin), (Texts{"open", "close"}));
}

// ---- Closing while a handler waits

class ClosingInTime : public OpeningWithDevices {
 protected:
  ClosingInTime() : handle_(QCMOpenComm(u"COM5:")) { QCMT_UpgradeToolsMode(handle_); }
  /// Sends a command; returns once its handler is about to begin.
  void Begin(const std::string& command) {
    begin_ = host::TakeCallNumber();
    world_.ForgetCalls();
    world_.controller().Send(CommandFrame(command));
    EXPECT_TRUE(WaitUntil([this] { return !world_.Calls({"SystemIdleTimerReset"}).empty(); })) << command;
  }
  /// The same, once it has made a transfer.
  void BeginTransfer(const std::string& command, const std::string& transfer) {
    Begin(command);
    EXPECT_TRUE(WaitUntil([&] {
      const Texts calls = DeviceCalls("I2C5:", begin_);
      return !calls.empty() && calls.front() == transfer;
    })) << command;
  }
  void ExpectToCloseSoon() {
    Watchdog watchdog;
    EXPECT_LE(MillisecondsOf([this] { EXPECT_EQ(QCMCloseComm(handle_), QCM_OK); }), 1000);
    EXPECT_EQ(host::LibraryThreads(), 0u);
  }
  std::uint64_t begin_ = 0;
  QCM_HANDLE handle_;
};

TEST_F(ClosingInTime, DoesNotWaitForASensorsMutex) {
  OtherProcess other;
  EXPECT_TRUE(other.Take(kFocusMutex, std::chrono::milliseconds(0)));
  Begin("CM_I2C,ADR=70,SDT=C007,RBT=5");
  ExpectToCloseSoon();
  EXPECT_EQ(DeviceCalls("I2C5:", begin_), Texts{"close"}) << "nothing is sent without the mutex";
  other.Release(kFocusMutex);
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(ClosingInTime, DoesNotWaitForTheLinesMutex) {
  OtherProcess other;
  EXPECT_TRUE(other.Take(kLinesMutex, std::chrono::milliseconds(0)));
  Begin("ST_EQP,L2P=1");
  ExpectToCloseSoon();
  EXPECT_EQ(DeviceCalls("GIO1:", begin_), Texts{});
}

TEST_F(ClosingInTime, DoesNotWaitForAChecksum) {
  BeginTransfer("GT_PIF,NAM=ANGLE,SUM,VER", "write 10 0002");
  ExpectToCloseSoon();
  EXPECT_EQ(DeviceCalls("I2C5:", begin_), (Texts{"write 10 0002", "close"}));
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(ClosingInTime, DoesNotWaitForATimeTheControllerHasChosen) {
  BeginTransfer("CM_I2C,ADR=20,SDT=0001,RBT=5,WAT=2147483647", "write 10 0001");
  ExpectToCloseSoon();
  EXPECT_EQ(DeviceCalls("I2C5:", begin_), (Texts{"write 10 0001", "close"}));
}

TEST_F(ClosingInTime, DoesNotWaitForFurtherAttempts) {
  StandardDevices::Sensors([](auto& sensors) { sensors.edm.present = false; });
  BeginTransfer("GT_PIF,NAM=EDM,VER", "write 16 C007 fails");
  ExpectToCloseSoon();
  EXPECT_LT(DeviceCalls("I2C5:", begin_).size(), 40u);
  EXPECT_EQ(HeldMutexes(), Texts{});
}

TEST_F(ClosingInTime, LetsAnotherServiceOfTheProcessHaveTheSensor) {
  Controller bluetooth(host::AttachPty("COMBT:"));
  const QCM_HANDLE radio = QCMOpenComm(u"COMBT:");
  BeginTransfer("CM_I2C,ADR=20,SDT=0001,RBT=5,WAT=2147483647", "write 10 0001");
  bluetooth.Send(CommandFrame("CM_I2C,ADR=20"));
  EXPECT_EQ(QCMCloseComm(handle_), QCM_OK);
  EXPECT_EQ(bluetooth.ReceiveAcks(1), ReplyFrame("I2C,STS=SCS") + std::string(kAck)) << "it had to wait for the first";
  QCMCloseComm(radio);
}

}  // namespace
}  // namespace qxtest
