// The serial channel on a port that fails while it is open: it neither spins nor hangs nor loses what it may keep.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "link/serial_channel.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using qxcm::SerialChannel;
using qxtest::Failing;
using qxtest::kForGood;
using qxtest::Returning;
using qxtest::WaitUntil;
using qxtest::Watchdog;
using std::chrono::milliseconds;

/// Answers every ENQ by itself: enough to see that bytes pass both ways.
class Echo final : public qxcm::LinkOwner {
 public:
  void AssembleReceivedBytes(qxcm::Link& link) override {
    std::string bytes;
    link.TakeReceived(bytes);
    link.Write(bytes);
  }
};

struct Port {
  Port() {
    channel.SetOwner(&echo);
    EXPECT_TRUE(channel.Open(u"COM5:"));
    EXPECT_TRUE(Works());
  }
  bool Works() {
    world.controller().Send("ping");
    return world.controller().Receive(4) == "ping";
  }
  std::size_t Count(const std::string& call) { return world.Calls({call}).size(); }

  qxtest::World world;
  Echo echo;
  SerialChannel channel;
};

// A call that fails at once is made again after a pause: in this time a few times only.
constexpr milliseconds kWhile{350};
constexpr std::size_t kAFewTimes = 8;

double ProcessorSeconds() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

bool IsBusyDuring(milliseconds time) {
  const double before = ProcessorSeconds();
  std::this_thread::sleep_for(time);
  return ProcessorSeconds() - before > std::chrono::duration<double>(time).count() / 3;
}

TEST(SerialChannel, DoesNotSpinWhenReadsFail) {
  Port port;
  {
    const Failing fault("ReadFile", ERROR_IO_DEVICE, 1, kForGood);
    port.world.controller().Send("kept");
    std::this_thread::sleep_for(kWhile);
    EXPECT_GE(port.Count("ReadFile"), 1u);
    EXPECT_LE(port.Count("ReadFile"), kAFewTimes);
  }
  EXPECT_EQ(port.world.controller().Receive(4), "kept");
}

TEST(SerialChannel, DoesNotSpinWhenThePortCannotTellItsState) {
  Port port;
  {
    const Failing fault("ClearCommError", ERROR_IO_DEVICE, 1, kForGood);
    port.world.controller().Send("kept");
    std::this_thread::sleep_for(kWhile);
    EXPECT_LE(port.Count("ClearCommError"), kAFewTimes);
  }
  EXPECT_EQ(port.world.controller().Receive(4), "kept");
}

TEST(SerialChannel, DoesNotSpinWhenItCannotWaitForEvents) {
  Port port;
  {
    const Failing fault("WaitCommEvent", ERROR_IO_DEVICE, 1, kForGood);
    EXPECT_TRUE(port.Works()) << "the wait that was pending is not touched";
    std::this_thread::sleep_for(kWhile);
    EXPECT_LE(port.Count("WaitCommEvent"), kAFewTimes);
  }
  EXPECT_TRUE(port.Works());
}

TEST(SerialChannel, DoesNotSpinWhenWaitsEndWithoutAnEvent) {
  Port port;
  {
    const Returning nothing("WaitCommEvent", 1);
    port.world.controller().Send("kept");
    std::this_thread::sleep_for(kWhile);
    EXPECT_LE(port.Count("WaitCommEvent"), kAFewTimes);
  }
  EXPECT_EQ(port.world.controller().Receive(4), "kept");
}

TEST(SerialChannel, DoesNotSpinWhenWritesFailAndLosesNothing) {
  Port port;
  {
    const Failing fault("WriteFile", ERROR_IO_DEVICE, 1, kForGood);
    port.channel.Write("one,");
    port.channel.Write("two");
    std::this_thread::sleep_for(kWhile);
    EXPECT_GE(port.Count("WriteFile"), 1u);
    EXPECT_LE(port.Count("WriteFile"), kAFewTimes);
  }
  EXPECT_EQ(port.world.controller().Receive(7), "one,two");
}

TEST(SerialChannel, DoesNotSpinWhenWritesTakeNothingAndLosesNothing) {
  Port port;
  {
    const Returning nothing("WriteFile", 1);
    port.channel.Write("kept");
    std::this_thread::sleep_for(kWhile);
    EXPECT_LE(port.Count("WriteFile"), kAFewTimes);
  }
  EXPECT_EQ(port.world.controller().Receive(4), "kept");
}

TEST(SerialChannel, DoesNotSpinWhenTheSendEventCannotBeResetOnce) {
  Port port;
  const Failing fault("EventModify", ERROR_INVALID_HANDLE, 2);  // the first one sets it
  // A byte that joins others still on their way neither sets nor resets the event: then another one does.
  const auto sends_until_refused = [&] {
    port.channel.Write("x");
    EXPECT_EQ(port.world.controller().Receive(1), "x");
    return port.Count("EventModify") == 1;
  };
  EXPECT_TRUE(WaitUntil(sends_until_refused));
  EXPECT_FALSE(IsBusyDuring(kWhile));
}

TEST(SerialChannel, SendsThoughTheSendEventCannotBeSetOnce) {
  Port port;
  {
    const Failing fault("EventModify", ERROR_INVALID_HANDLE);
    port.channel.Write("x");
  }
  port.channel.Write("y");
  EXPECT_EQ(port.world.controller().Receive(2), "xy");
}

TEST(SerialChannel, UsesNoTimeWhileNothingHappens) {
  Port port;
  EXPECT_FALSE(IsBusyDuring(kWhile));
}

// ---- Closing a failing port

TEST(SerialChannel, ClosesThoughTheMaskCannotBeClearedAtFirst) {
  Watchdog watchdog;
  Port port;
  const Failing fault("SetCommMask", ERROR_IO_DEVICE, 1, 3);
  port.channel.Close();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(SerialChannel, ClosesThoughTheMaskCannotBeClearedAtAll) {
  Watchdog watchdog;
  Port port;
  const Failing fault("SetCommMask", ERROR_IO_DEVICE, 1, kForGood);
  port.channel.Close();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(SerialChannel, ClosesThoughWaitsAreRefused) {
  Watchdog watchdog;
  Port port;
  const Failing one("WaitForSingleObject", ERROR_INVALID_HANDLE, 1, kForGood);
  const Failing several("WaitForMultipleObjects", ERROR_INVALID_HANDLE, 1, kForGood);
  const Failing windows("MsgWaitForMultipleObjectsEx", ERROR_INVALID_HANDLE, 1, kForGood);
  port.channel.Close();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(SerialChannel, ClosesThoughTheStopEventCannotBeSet) {
  Watchdog watchdog;
  Port port;
  const Failing fault("EventModify", ERROR_INVALID_HANDLE, 1, kForGood);
  port.channel.Close();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

// ---- An adapter that is unplugged

/// A serial device whose plug is the other end of a pty made here.
class Adapter {
 public:
  Adapter() : plug_(posix_openpt(O_RDWR | O_NOCTTY)) {
    EXPECT_EQ(grantpt(plug_), 0);
    EXPECT_EQ(unlockpt(plug_), 0);
    host::AttachDevice("COM5:", ptsname(plug_));
  }
  Adapter(const Adapter&) = delete;
  Adapter& operator=(const Adapter&) = delete;
  ~Adapter() { Unplug(); }

  void Unplug() {
    if (plug_ >= 0) close(plug_);
    plug_ = -1;
  }
  std::string Exchange(const std::string& bytes) {
    if (write(plug_, bytes.data(), bytes.size()) < 0) return "";
    std::string received(bytes.size(), '?');
    const ssize_t count = read(plug_, received.data(), received.size());
    return count < 0 ? "" : received;
  }

 private:
  int plug_;
};

TEST(SerialChannel, NeitherSpinsNorHangsWhenTheAdapterIsUnplugged) {
  Watchdog watchdog;
  qxtest::World world;
  Adapter adapter;
  Echo echo;
  SerialChannel channel;
  channel.SetOwner(&echo);
  ASSERT_TRUE(channel.Open(u"COM5:"));
  ASSERT_EQ(adapter.Exchange("ping"), "ping");
  world.ForgetCalls();
  adapter.Unplug();
  channel.Write("nobody hears this");
  EXPECT_FALSE(IsBusyDuring(kWhile));
  EXPECT_LE(world.Calls({"SetCommMask"}).size(), kAFewTimes);
  const auto start = std::chrono::steady_clock::now();
  channel.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(SerialChannel, OpensAgainWhenTheAdapterIsBack) {
  qxtest::World world;
  auto adapter = std::make_unique<Adapter>();
  Echo echo;
  SerialChannel channel;
  channel.SetOwner(&echo);
  ASSERT_TRUE(channel.Open(u"COM5:"));
  adapter->Unplug();
  channel.Close();
  EXPECT_FALSE(channel.Open(u"COM5:"));
  adapter = std::make_unique<Adapter>();
  ASSERT_TRUE(channel.Open(u"COM5:"));
  EXPECT_EQ(adapter->Exchange("ping"), "ping");
}

}  // namespace
