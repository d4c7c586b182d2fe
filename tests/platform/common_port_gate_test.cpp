// Ports that are not there all the time.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>

#include "common/ports/ports.h"
#include "controller_line.h"

namespace {

class HostPortGate : public testing::Test {
 protected:
  HostPortGate() {
    host::GatePort("COM5:", [this] { return there_.load(); });
  }
  ~HostPortGate() override { host::GatePort("COM5:", nullptr); }

  std::atomic<bool> there_{false};
};

bool Opens(LPCWSTR name = TEXT("COM5:")) {
  const HANDLE port = OpenPort(name);
  return port != INVALID_HANDLE_VALUE && CloseHandle(port);
}

TEST_F(HostPortGate, KeepsAPortFromBeingFound) {
  ControllerLine line;
  EXPECT_FALSE(Opens());
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
  there_ = true;
  EXPECT_TRUE(Opens());
}

TEST_F(HostPortGate, OutlivesTheLine) {
  { ControllerLine line; }
  ControllerLine line;
  EXPECT_FALSE(Opens());
}

TEST_F(HostPortGate, LeavesOtherPortsAlone) {
  ControllerLine line("COM7:");
  EXPECT_TRUE(Opens(TEXT("COM7:")));
}

TEST_F(HostPortGate, LeavesAnOpenPortAlone) {
  ControllerLine line;
  there_ = true;
  OpenedPort port;
  there_ = false;
  EXPECT_EQ(port.Write("hello"), 5u);
  EXPECT_EQ(line.Receive(5), "hello");
}

TEST_F(HostPortGate, CanBeTakenAway) {
  ControllerLine line;
  host::GatePort("COM5:", nullptr);
  EXPECT_TRUE(Opens());
}

}  // namespace
