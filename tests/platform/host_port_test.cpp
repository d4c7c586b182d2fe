// What only this host's ports have: sharing, devices that go away, an observer.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include "common/ports/ports.h"
#include "controller_line.h"

namespace {

using Clock = std::chrono::steady_clock;
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

// Port options are the program's; every test leaves them as they were.
class HostPort : public testing::Test {
 protected:
  ~HostPort() override {
    host::SharePorts(false);
    host::SetPortObserver(nullptr);
  }
};

TEST_F(HostPort, AWaitWithoutAMaskFails) {
  ControllerLine line;
  OpenedPort port;
  DWORD mask = 1;
  ASSERT_TRUE(SetCommMask(port, 0));
  EXPECT_FALSE(WaitCommEvent(port, &mask, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(mask, 0u);
}

TEST_F(HostPort, OnlyOneThreadWaitsAtATime) {
  ControllerLine line;
  OpenedPort port;
  DWORD mask = 0;
  auto first = std::async(std::launch::async, [&] { return WaitCommEvent(port, &mask, nullptr); });
  EXPECT_EQ(first.wait_for(milliseconds(50)), std::future_status::timeout);
  DWORD second = 0;
  EXPECT_FALSE(WaitCommEvent(port, &second, nullptr));
  EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
  SetCommMask(port, 0);
  EXPECT_TRUE(first.get());
}

TEST_F(HostPort, ClosingTheHandleEndsEveryPendingCall) {
  ControllerLine line;
  const HANDLE port = OpenPort();
  SetCommMask(port, EV_RXCHAR);
  std::atomic<int> begun{0};
  const auto ended = [&](auto call) {
    return std::async(std::launch::async, [&begun, call] {
      std::string buffer(1 << 20, 'x');
      DWORD count = 0;
      ++begun;
      return call(&buffer[0], &count) ? 0u : GetLastError();
    });
  };
  const auto write = [=](char* buffer, DWORD* count) { return WriteFile(port, buffer, 1 << 20, count, nullptr); };
  auto wait = ended([=](char*, DWORD* mask) { return WaitCommEvent(port, mask, nullptr); });
  auto reading = ended([=](char* buffer, DWORD* count) { return ReadFile(port, buffer, 1, count, nullptr); });
  auto writing = ended(write);
  auto queued = ended(write);
  while (begun < 4) std::this_thread::yield();
  EXPECT_EQ(wait.wait_for(milliseconds(100)), std::future_status::timeout);
  EXPECT_TRUE(CloseHandle(port));
  for (auto* call : {&wait, &reading, &writing, &queued}) EXPECT_EQ(call->get(), ERROR_OPERATION_ABORTED);
}

TEST_F(HostPort, RefusesWhatItCannotDo) {
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

TEST_F(HostPort, RefusesSettingsThatTheLineCannotHave) {
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

TEST_F(HostPort, RefusesOtherWaysOfOpening) {
  ControllerLine line;
  const auto refused = [](DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    const HANDLE port = CreateFileW(TEXT("COM5:"), access, share, nullptr, disposition, flags, nullptr);
    return port == INVALID_HANDLE_VALUE && GetLastError() == ERROR_INVALID_PARAMETER;
  };
  EXPECT_TRUE(refused(GENERIC_READ, 0, OPEN_EXISTING, 0));
  EXPECT_TRUE(refused(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING, 0));
  EXPECT_TRUE(refused(GENERIC_READ | GENERIC_WRITE, 0, 2, 0));
  EXPECT_TRUE(refused(GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING, 0x40000000));
}

TEST_F(HostPort, StaysUsableWhileNoControllerIsThere) {
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

TEST_F(HostPort, IsNotFoundOnceItIsDetached) {
  { ControllerLine line; }
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST_F(HostPort, TwoPortsAreTwoLines) {
  ControllerLine cable;
  ControllerLine radio("COMBT:");
  OpenedPort port;
  const HANDLE other = OpenPort(TEXT("COMBT:"));
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(other, "radio", 5, &written, nullptr));
  EXPECT_EQ(port.Write("cable"), 5u);
  EXPECT_EQ(cable.Receive(5), "cable");
  EXPECT_EQ(radio.Receive(5), "radio");
  CloseHandle(other);
}

TEST_F(HostPort, SharedPortsGiveReceivedBytesToTheFirst) {
  host::SharePorts(true);
  ControllerLine line;
  OpenedPort first;
  OpenedPort second(50);
  line.Send("abc");
  EXPECT_EQ(second.Read(3), "");
  EXPECT_EQ(second.Waiting(), 0u);
  EXPECT_EQ(first.Read(3), "abc");
  EXPECT_EQ(first.Write("1"), 1u);
  EXPECT_EQ(second.Write("2"), 1u);
  EXPECT_EQ(line.Receive(2), "12");
}

TEST_F(HostPort, TheNextSharerReceivesOnceTheFirstHasClosed) {
  host::SharePorts(true);
  ControllerLine line;
  const HANDLE first = OpenPort();
  OpenedPort second;
  DWORD mask = 0;
  auto wait = std::async(std::launch::async, [&] { return WaitCommEvent(second, &mask, nullptr); });
  line.Send("abc");
  EXPECT_EQ(wait.wait_for(milliseconds(50)), std::future_status::timeout);
  CloseHandle(first);
  EXPECT_TRUE(wait.get());
  EXPECT_EQ(second.Read(3), "abc");
}

TEST_F(HostPort, SetsADeviceUpAsAskedAndLeavesItAsFound) {
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

TEST_F(HostPort, RefusesADeviceThatAnotherProgramHolds) {
  Adapter adapter;
  const int other = open(ptsname(adapter.end()), O_RDWR | O_NOCTTY);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  close(other);
  OpenedPort port;
  EXPECT_EQ(port.Write("free"), 4u);
}

TEST_F(HostPort, APortWhoseDeviceIsMissingIsNotFound) {
  host::AttachDevice("COM5:", "/dev/no-such-tty");
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  host::DetachPort("COM5:");
}

// Pages that the process holds in memory.
long ResidentPages() {
  long size = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

TEST_F(HostPort, NothingGrowsWhenTheControllerNeverReads) {
  ControllerLine line;
  OpenedPort port(1);
  const std::string bytes(1 << 20, 'x');
  DWORD taken = port.Write(bytes);
  const long before = ResidentPages();
  for (int i = 0; i < 100; ++i) taken += port.Write(bytes);
  EXPECT_LT(taken, 1u << 18);  // what the line itself holds
  EXPECT_LT((ResidentPages() - before) * sysconf(_SC_PAGESIZE), 1 << 20);
}

TEST_F(HostPort, PurgingDiscardsWhatTheControllerHasNotBeenGiven) {
  ControllerLine line;
  OpenedPort port(50);
  const DWORD written = port.Write(std::string(1 << 20, 'x'));
  EXPECT_TRUE(PurgeComm(port, PURGE_TXCLEAR));
  EXPECT_LT(line.Receive(written, milliseconds(100)).size(), written);
  EXPECT_EQ(port.Write("fresh"), 5u);
  EXPECT_EQ(line.Receive(5), "fresh");
}

TEST_F(HostPort, AnUnpluggedDeviceFailsEveryCallAndEndsAPendingWait) {
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

TEST_F(HostPort, TheObserverSeesWhatPassesBothWays) {
  std::string seen;
  host::SetPortObserver([&](std::string_view port, bool in, std::string_view bytes) {
    seen += std::string(port) + (in ? " in " : " out ") + std::string(bytes) + "\n";
  });
  ControllerLine line;
  OpenedPort port;
  line.Send("question");
  port.Read(8);
  port.Write("answer");
  EXPECT_EQ(seen, "COM5: in question\nCOM5: out answer\n");
}

}  // namespace
