// What only this host's ports have: ptys, devices that go away, the limits of a tty.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>
#include <windows.h>

#include <chrono>
#include <fstream>
#include <future>
#include <string>

#include "common/ports/ports.h"
#include "controller_line.h"

namespace {

using std::chrono::milliseconds;

// A serial device that can be unplugged: the far end of a pty, with this end as what hangs on the cable.
class Adapter {
 public:
  Adapter() : end_(posix_openpt(O_RDWR | O_NOCTTY)) {
    grantpt(end_);
    unlockpt(end_);
    host::AttachDevice("COM5:", ptsname(end_));
  }
  ~Adapter() {
    Unplug();
    host::DetachPort("COM5:");
  }
  int end() const { return end_; }
  void Unplug() {
    if (end_ >= 0) close(end_);
    end_ = -1;
  }

 private:
  int end_;
};

TEST(HostPort, RefusesWhatItCannotDo) {
  ControllerLine line;
  OpenedPort port;
  OVERLAPPED overlapped = {};
  DWORD count = 0;
  EXPECT_FALSE(WaitCommEvent(port, &count, &overlapped));
  EXPECT_FALSE(ReadFile(port, &count, 1, &count, &overlapped));
  EXPECT_FALSE(WriteFile(port, &count, 1, nullptr, nullptr));
  EXPECT_FALSE(SetCommMask(port, 0x0004));
  EXPECT_FALSE(PurgeComm(port, 0));
  COMMTIMEOUTS interval = {10, 0, 0, 0, 0};
  EXPECT_FALSE(SetCommTimeouts(port, &interval));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_FALSE(PurgeComm(port, PURGE_RXABORT));
  EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
}

TEST(HostPort, RefusesSettingsThatTheLineCannotHave) {
  ControllerLine line;
  OpenedPort port;
  DCB good = {};
  ASSERT_TRUE(GetCommState(port, &good));
  const auto refused = [&](auto change) {
    DCB state = good;
    change(state);
    return !SetCommState(port, &state) && GetLastError() == ERROR_INVALID_PARAMETER;
  };
  EXPECT_TRUE(refused([](DCB& state) { state.BaudRate = 12345; }));
  EXPECT_TRUE(refused([](DCB& state) { state.ByteSize = 7; }));
  EXPECT_TRUE(refused([](DCB& state) { state.Parity = 2; }));
  EXPECT_TRUE(refused([](DCB& state) { state.StopBits = 2; }));
  EXPECT_TRUE(refused([](DCB& state) { state.fOutX = 1; }));
  EXPECT_TRUE(refused([](DCB& state) { state.fOutxCtsFlow = 1; }));
  EXPECT_TRUE(refused([](DCB& state) { state.fBinary = 0; }));
  EXPECT_TRUE(SetCommState(port, &good));
}

TEST(HostPort, StaysUsableWhileNoControllerIsThere) {
  const std::string path = host::AttachPty("COM5:");
  OpenedPort port;
  for (int i = 0; i < 3; ++i) {
    const int controller = open(path.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(write(controller, "hello", 5), 5);
    EXPECT_EQ(port.Read(5), "hello");
    close(controller);
  }
  host::DetachPort("COM5:");
}

TEST(HostPort, SetsADeviceUpAsAskedAndLeavesItAsFound) {
  Adapter adapter;
  termios before, during, after;
  ASSERT_EQ(tcgetattr(adapter.end(), &before), 0);
  {
    OpenedPort port;
    DCB state = {};
    ASSERT_TRUE(GetCommState(port, &state));
    state.BaudRate = 115200;
    ASSERT_TRUE(SetCommState(port, &state));
    ASSERT_EQ(tcgetattr(adapter.end(), &during), 0);
  }
  ASSERT_EQ(tcgetattr(adapter.end(), &after), 0);
  EXPECT_EQ(cfgetospeed(&during), static_cast<speed_t>(B115200));
  EXPECT_EQ(during.c_lflag & (ICANON | ECHO), 0u);
  EXPECT_EQ(after.c_lflag, before.c_lflag);
}

TEST(HostPort, RefusesADeviceThatAnotherProgramHolds) {
  Adapter adapter;
  const int other = open(ptsname(adapter.end()), O_RDWR | O_NOCTTY);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  close(other);
  OpenedPort port;
  EXPECT_EQ(port.Write("free"), 4u);
}

TEST(HostPort, AReadOnAnUnpluggedDeviceFailsAtAnyPace) {
  host::PacePorts(9600);
  Adapter adapter;
  OpenedPort port;
  adapter.Unplug();
  DWORD count = 0;
  char byte = 0;
  EXPECT_FALSE(ReadFile(port, &byte, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
  host::PacePorts(0);
}

// Pages that the process holds in memory.
long ResidentPages() {
  long size = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

TEST(HostPort, NothingGrowsWhenTheControllerNeverReads) {
  ControllerLine line;
  OpenedPort port(1);
  const std::string bytes(1 << 20, 'x');
  DWORD taken = port.Write(bytes);
  const long before = ResidentPages();
  for (int i = 0; i < 100; ++i) taken += port.Write(bytes);
  EXPECT_LT(taken, 1u << 18);  // what the line itself holds
  EXPECT_LT((ResidentPages() - before) * sysconf(_SC_PAGESIZE), 1 << 20);
}

TEST(HostPort, PurgingDiscardsWhatTheControllerHasNotBeenGiven) {
  ControllerLine line;
  OpenedPort port(50);
  const DWORD written = port.Write(std::string(1 << 20, 'x'));
  EXPECT_TRUE(PurgeComm(port, PURGE_TXCLEAR));
  EXPECT_LT(line.Receive(written, milliseconds(100)).size(), written);
  EXPECT_EQ(port.Write("fresh"), 5u);
  EXPECT_EQ(line.Receive(5), "fresh");
}

TEST(HostPort, AnUnpluggedDeviceFailsEveryCallAndEndsAPendingWait) {
  Adapter adapter;
  OpenedPort port;
  auto wait = std::async(std::launch::async, [&] {
    DWORD mask = 1;
    return WaitCommEvent(port, &mask, nullptr) ? 0u : GetLastError();
  });
  EXPECT_EQ(wait.wait_for(milliseconds(50)), std::future_status::timeout);
  adapter.Unplug();
  EXPECT_EQ(wait.get(), ERROR_IO_DEVICE);
  DWORD count = 0;
  char byte = 0;
  EXPECT_FALSE(WaitCommEvent(port, &count, nullptr));
  EXPECT_FALSE(ReadFile(port, &byte, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
  EXPECT_FALSE(WriteFile(port, &byte, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
}

}  // namespace
