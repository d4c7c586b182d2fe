// The serial port as the library uses it: a real tty, real threads.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "controller_line.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Waits for an event on a thread of its own; gives the mask, or 0xFFFFFFFF when the wait failed.
std::future<DWORD> WaitOnThread(HANDLE port) {
  return std::async(std::launch::async, [port] {
    DWORD mask = 0;
    return WaitCommEvent(port, &mask, nullptr) ? mask : 0xFFFFFFFFu;
  });
}

bool StillWaiting(const std::future<DWORD>& wait) {
  return wait.wait_for(milliseconds(50)) == std::future_status::timeout;
}

TEST(SerialPort, OpensByItsNameInAnyLetterCase) {
  ControllerLine line;
  const HANDLE port = OpenPort(TEXT("com5:"));
  ASSERT_NE(port, INVALID_HANDLE_VALUE);
  EXPECT_TRUE(CloseHandle(port));
}

TEST(SerialPort, IsNotFoundByAnyOtherName) {
  ControllerLine line;
  for (LPCWSTR name : {TEXT("COM9:"), TEXT("COM5::"), TEXT("XCOM5:")}) {
    SetLastError(0);
    EXPECT_EQ(OpenPort(name), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  }
}

TEST(SerialPort, RefusesASecondOpening) {
  ControllerLine line;
  OpenedPort port;
  EXPECT_EQ(OpenPort(), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(SerialPort, OpensAgainOnceItIsClosed) {
  ControllerLine line;
  for (int i = 0; i < 3; ++i) {
    OpenedPort port;
    line.Send("again");
    EXPECT_EQ(port.Read(5), "again");
  }
}

TEST(SerialPort, ReadsBytesThatCameBeforeItWasOpened) {
  ControllerLine line;
  line.Send("early");
  OpenedPort port;
  DWORD mask = 0;
  EXPECT_TRUE(WaitCommEvent(port, &mask, nullptr));
  EXPECT_EQ(mask, DWORD{EV_RXCHAR});
  EXPECT_EQ(port.Read(5), "early");
}

TEST(SerialPort, WaitsUntilBytesCome) {
  ControllerLine line;
  OpenedPort port;
  std::future<DWORD> wait = WaitOnThread(port);
  EXPECT_TRUE(StillWaiting(wait));
  line.Send("x");
  EXPECT_EQ(wait.get(), DWORD{EV_RXCHAR});
  EXPECT_EQ(port.Waiting(), 1u);
  EXPECT_EQ(port.Read(1), "x");
}

TEST(SerialPort, PassesEveryByteValueBothWays) {
  ControllerLine line;
  OpenedPort port;
  std::string bytes;
  for (int value = 0; value < 256; ++value) bytes.push_back(static_cast<char>(value));
  line.Send(bytes);
  EXPECT_EQ(port.Read(256), bytes);
  EXPECT_EQ(port.Write(bytes), 256u);
  EXPECT_EQ(line.Receive(256), bytes);
}

TEST(SerialPort, ClearingTheMaskEndsAPendingWaitWithoutAnEvent) {
  ControllerLine line;
  OpenedPort port;
  std::future<DWORD> wait = WaitOnThread(port);
  EXPECT_TRUE(StillWaiting(wait));
  EXPECT_TRUE(SetCommMask(port, 0));
  EXPECT_EQ(wait.get(), 0u);
}

TEST(SerialPort, ReadGathersBytesThatComeInPieces) {
  ControllerLine line;
  OpenedPort port;
  auto read = std::async(std::launch::async, [&] { return port.Read(6); });
  line.Send("ab");
  std::this_thread::sleep_for(milliseconds(20));
  line.Send("cd");
  std::this_thread::sleep_for(milliseconds(20));
  line.Send("ef");
  EXPECT_EQ(read.get(), "abcdef");
}

TEST(SerialPort, ReadReturnsWhatHasComeWhenTheTimeIsOver) {
  ControllerLine line;
  OpenedPort port(100);
  line.Send("abc");
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(port.Read(10), "abc");
  EXPECT_GE(Clock::now() - start, milliseconds(95));
  EXPECT_EQ(port.Read(1), "");
}

TEST(SerialPort, ReadTimeGrowsWithTheBytesAskedFor) {
  ControllerLine line;
  OpenedPort port;
  COMMTIMEOUTS timeouts = {0, 10, 50, 0, 0};
  ASSERT_TRUE(SetCommTimeouts(port, &timeouts));
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(port.Read(10), "");
  EXPECT_GE(Clock::now() - start, milliseconds(145));
}

TEST(SerialPort, WriteGivesUpWhenTheControllerNeverReads) {
  ControllerLine line;
  OpenedPort port(100);
  const std::string bytes(1 << 20, 'w');
  const Clock::time_point start = Clock::now();
  DWORD gone = port.Write(bytes);
  EXPECT_GE(Clock::now() - start, milliseconds(95));
  while (const DWORD more = port.Write(bytes)) gone += more;  // what lies on the way may give a little room yet
  EXPECT_LT(gone, bytes.size());
  EXPECT_EQ(line.Receive(gone), std::string(gone, 'w'));
  EXPECT_EQ(port.Write("more"), 4u);
  EXPECT_EQ(line.Receive(4), "more");
}

TEST(SerialPort, WritesBesideAPendingWait) {
  ControllerLine line;
  OpenedPort port;
  std::future<DWORD> wait = WaitOnThread(port);
  EXPECT_TRUE(StillWaiting(wait));
  EXPECT_EQ(port.Write("reply"), 5u);
  EXPECT_EQ(line.Receive(5), "reply");
  EXPECT_TRUE(StillWaiting(wait));
  SetCommMask(port, 0);
  EXPECT_EQ(wait.get(), 0u);
}

TEST(SerialPort, PurgingDiscardsWhatHasBeenReceived) {
  ControllerLine line;
  OpenedPort port(50);
  line.Send("stale");
  DWORD mask = 0;
  EXPECT_TRUE(WaitCommEvent(port, &mask, nullptr));
  EXPECT_TRUE(PurgeComm(port, PURGE_RXCLEAR));
  EXPECT_TRUE(PurgeComm(port, PURGE_TXCLEAR));
  EXPECT_EQ(port.Waiting(), 0u);
  line.Send("fresh");
  EXPECT_EQ(port.Read(5), "fresh");
}

TEST(SerialPort, KeepsItsSettings) {
  ControllerLine line;
  OpenedPort port;
  DCB state = {};
  ASSERT_TRUE(GetCommState(port, &state));
  EXPECT_EQ(state.DCBlength, sizeof(DCB));
  state.BaudRate = CBR_38400;
  state.fDtrControl = DTR_CONTROL_DISABLE;
  state.fTXContinueOnXoff = 1;
  ASSERT_TRUE(SetupComm(port, 1024, 1024));
  ASSERT_TRUE(SetCommState(port, &state));
  DCB kept = {};
  ASSERT_TRUE(GetCommState(port, &kept));
  EXPECT_EQ(kept.BaudRate, DWORD{CBR_38400});
  EXPECT_EQ(kept.fTXContinueOnXoff, 1u);
}

TEST(SerialPort, CallsOnHandlesOfNoPortFail) {
  const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DCB state = {};
  DWORD count = 0;
  EXPECT_FALSE(GetCommState(event, &state));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_FALSE(ReadFile(event, &state, 1, &count, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  CloseHandle(event);
}

TEST(SerialPort, LosesNothingUnderTrafficFromBothSides) {
  ControllerLine line;
  OpenedPort port;
  constexpr int kFrames = 2000;
  auto echo = std::async(std::launch::async, [&] {
    DWORD mask = 0;
    for (DWORD seen = 0; seen < kFrames * 8 && WaitCommEvent(port, &mask, nullptr);) {
      const std::string bytes = port.Read(port.Waiting());
      seen += port.Write(bytes);
    }
  });
  std::string expected;
  std::string received;
  for (int i = 0; i < kFrames; ++i) {
    const std::string frame = "C" + std::to_string(1000000 + i);
    line.Send(frame);
    expected += frame;
    if (i % 50 == 49) received += line.Receive(50 * 8);
  }
  echo.get();
  EXPECT_EQ(received, expected);
}

bool StillRunning(const std::future<void>& work) {
  return work.wait_for(milliseconds(1)) == std::future_status::timeout;
}

// A reader as the library has it: waits for bytes and reads them until it is told to stop.
void ReadUntilStopped(OpenedPort& port, const std::atomic<bool>& stop) {
  DWORD mask = 0;
  while (!stop && WaitCommEvent(port, &mask, nullptr)) {
    const DWORD waiting = (mask & EV_RXCHAR) != 0 ? port.Waiting() : 0;
    if (waiting > 0) port.Read(waiting);
  }
}

TEST(SerialPort, OpensAndClosesUnderTraffic) {
  ControllerLine line;
  std::atomic<bool> quiet{false};
  auto controller = std::async(std::launch::async, [&] {
    while (!quiet) line.Send("C<GT_MDT,HAF>00\r");
  });
  for (int cycle = 0; cycle < 200; ++cycle) {
    OpenedPort port(20);
    std::atomic<bool> stop{false};
    auto reader = std::async(std::launch::async, [&] { ReadUntilStopped(port, stop); });
    auto writer = std::async(std::launch::async, [&] { port.Write("reply"); });
    writer.get();
    stop = true;
    do {
      EXPECT_TRUE(SetCommMask(port, 0));
    } while (StillRunning(reader));
  }
  quiet = true;
  OpenedPort drain;
  while (StillRunning(controller)) drain.Read(drain.Waiting());
}

}  // namespace
