// What every host's ports have beyond the platform's: sharing, an observer, an end for what waits on a closed handle.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "common/ports/ports.h"
#include "controller_line.h"

namespace {

using std::chrono::milliseconds;

// Port options are the program's; every test leaves them as they were.
class CommonPort : public testing::Test {
 protected:
  ~CommonPort() override {
    host::SharePorts(false);
    host::SetPortObserver(nullptr);
  }
};

TEST_F(CommonPort, AWaitWithoutAMaskFails) {
  ControllerLine line;
  OpenedPort port;
  DWORD mask = 1;
  ASSERT_TRUE(SetCommMask(port, 0));
  EXPECT_FALSE(WaitCommEvent(port, &mask, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(mask, 0u);
}

TEST_F(CommonPort, OnlyOneThreadWaitsAtATime) {
  ControllerLine line;
  OpenedPort port;
  DWORD mask = 0;
  auto first = std::async(std::launch::async, [&] { return WaitCommEvent(port, &mask, nullptr); });
  EXPECT_EQ(first.wait_for(milliseconds(50)), std::future_status::timeout);
  DWORD second = 0;
  EXPECT_FALSE(WaitCommEvent(port, &second, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  SetCommMask(port, 0);
  EXPECT_TRUE(first.get());
}

TEST_F(CommonPort, ClosingTheHandleEndsEveryPendingCall) {
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
  for (auto* call : {&wait, &reading, &writing, &queued}) EXPECT_EQ(call->get(), DWORD{ERROR_OPERATION_ABORTED});
}

TEST_F(CommonPort, RefusesOtherWaysOfOpening) {
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

TEST_F(CommonPort, IsNotFoundOnceItIsDetached) {
  { ControllerLine line; }
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(CommonPort, TwoPortsAreTwoLines) {
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

TEST_F(CommonPort, SharedPortsGiveReceivedBytesToTheFirst) {
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

TEST_F(CommonPort, TheNextSharerReceivesOnceTheFirstHasClosed) {
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

TEST_F(CommonPort, ClosingTheHandleEndsTheWaitOfASharerThatDoesNotReceive) {
  host::SharePorts(true);
  ControllerLine line;
  OpenedPort first;
  const HANDLE second = OpenPort();
  SetCommMask(second, EV_RXCHAR);
  std::atomic<bool> begun{false};
  auto wait = std::async(std::launch::async, [&begun, second] {
    DWORD mask = 0;
    begun = true;
    return WaitCommEvent(second, &mask, nullptr) ? 0u : GetLastError();
  });
  while (!begun) std::this_thread::yield();
  EXPECT_EQ(wait.wait_for(milliseconds(100)), std::future_status::timeout);
  EXPECT_TRUE(CloseHandle(second));
  EXPECT_EQ(wait.get(), DWORD{ERROR_OPERATION_ABORTED});
}

TEST_F(CommonPort, APortWhoseDeviceIsMissingIsNotFound) {
  host::AttachDevice("COM5:", "no-such-device");
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  host::DetachPort("COM5:");
}

TEST_F(CommonPort, TheObserverSeesWhatPassesBothWays) {
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
