// The Bluetooth radio: its two calls, and its port that comes up when it is switched on.
#include "instrument/radio.h"

#include <chrono>
#include <thread>

#include "common/ports/ports.h"
#include "support/test_application.h"
#include "unit/instrument/device_bus.h"

namespace qxtest {
namespace {

using Lines = std::vector<std::string>;

class Radio : public Devices {
 protected:
  Radio() { host::AttachPty("COMBT:"); }
  ~Radio() override { host::DetachPort("COMBT:"); }

  static DWORD Mode() {
    DWORD mode = 77;
    EXPECT_EQ(BthUtilGetRadioMode(&mode), 0);
    return mode;
  }
  static bool PortOpens() {
    const HANDLE port = CreateFileW(u"COMBT:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return port != INVALID_HANDLE_VALUE && CloseHandle(port);
  }
  /// Milliseconds until the port opens; every failure before must be that there is no port yet.
  static double TimeUntilPortOpens() {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(WaitUntil([] {
      if (PortOpens()) return true;
      EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
      return false;
    }));
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  }

  host::instrument::Radio& radio_ = host::instrument::Radio::Instance();
};

TEST_F(Radio, IsOnFromTheStartWithItsPort) {
  EXPECT_EQ(Mode(), 2u);
  EXPECT_TRUE(PortOpens());
}

TEST_F(Radio, IsSwitched) {
  for (const DWORD mode : {0u, 1u, 2u}) {
    EXPECT_EQ(BthUtilSetRadioMode(mode), 0);
    EXPECT_EQ(Mode(), mode);
  }
}

TEST_F(Radio, HasNoOtherModes) {
  EXPECT_EQ(BthUtilSetRadioMode(3), int{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(BthUtilGetRadioMode(nullptr), int{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(Mode(), 2u);
}

TEST_F(Radio, StaysAsItIsWhenItCannotBeSwitched) {
  radio_.SetMode(0);
  radio_.SetCanSwitch(false);
  EXPECT_EQ(BthUtilSetRadioMode(2), int{ERROR_GEN_FAILURE});
  EXPECT_EQ(Mode(), 0u);
}

TEST_F(Radio, HasItsPortOnlyWhileDiscoverable) {
  for (const DWORD mode : {0u, 1u}) {
    BthUtilSetRadioMode(mode);
    EXPECT_FALSE(PortOpens());
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  }
  BthUtilSetRadioMode(2);
  EXPECT_TRUE(PortOpens());
}

TEST_F(Radio, LeavesTheCableAlone) {
  host::AttachPty("COM5:");
  radio_.SetMode(0);
  const HANDLE cable = CreateFileW(u"COM5:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_TRUE(CloseHandle(cable));
  host::DetachPort("COM5:");
}

TEST_F(Radio, BringsItsPortUpInTimeAfterTheLibraryHasSwitchedItOn) {
  radio_.SetMode(0);
  radio_.SetPortUpAfterMs(120);
  BthUtilSetRadioMode(2);
  EXPECT_GE(TimeUntilPortOpens(), 100);
}

TEST_F(Radio, BringsItsPortUpInTimeAfterTheWorldHasSwitchedItOn) {
  radio_.SetMode(1);
  radio_.SetPortUpAfterMs(120);
  radio_.SetMode(2);
  EXPECT_GE(TimeUntilPortOpens(), 100);
}

TEST_F(Radio, TakesTheTimeAnewEachTimeItIsSwitchedOn) {
  radio_.SetPortUpAfterMs(3600000);
  for (const std::uint32_t mode : {0u, 2u}) radio_.SetMode(mode);
  EXPECT_FALSE(PortOpens());
  radio_.SetPortUpAfterMs(0);
  EXPECT_TRUE(PortOpens());
}

TEST_F(Radio, KeepsItsPortWhenItIsSwitchedOnAgainInTime) {
  radio_.SetMode(0);
  radio_.SetPortUpAfterMs(100);
  radio_.SetMode(2);
  EXPECT_TRUE(WaitUntil(PortOpens));
  BthUtilSetRadioMode(2);
  EXPECT_TRUE(PortOpens());
}

TEST_F(Radio, IsListedByOrdinal) {
  Mode();
  BthUtilSetRadioMode(1);
  BthUtilSetRadioMode(9);
  EXPECT_EQ(Listed(), (Lines{"BTHUTIL 2() = 0", "BTHUTIL 1(1) = 0", "BTHUTIL 1(9) = 87"}));
}

TEST_F(Radio, IsReachedByFaults) {
  Fault("BTHUTIL", std::int64_t{1}, 31);
  EXPECT_EQ(BthUtilSetRadioMode(0), 31);
  Fault("BTHUTIL", std::int64_t{2}, 32);
  DWORD mode = 77;
  EXPECT_EQ(BthUtilGetRadioMode(&mode), 32);
  EXPECT_EQ(mode, 77u);
  EXPECT_EQ(Mode(), 2u);
}

TEST_F(Radio, IsSwitchedAndAskedBySeveralThreads) {
  std::vector<std::thread> threads;
  for (const DWORD mode : {0u, 1u, 2u}) {
    threads.emplace_back([mode] {
      for (int turn = 0; turn < 100; ++turn) {
        EXPECT_EQ(BthUtilSetRadioMode(mode), 0);
        EXPECT_LE(Mode(), 2u);
        PortOpens();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace qxtest
