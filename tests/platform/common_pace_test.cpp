// Ports held to a line speed, and the count of bytes against time behind that.
#include <gtest/gtest.h>
#include <time.h>
#include <windows.h>

#include <chrono>
#include <future>
#include <string>

#include "common/ports/pacer.h"
#include "common/ports/ports.h"
#include "controller_line.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

class PacedPort : public testing::Test {
 protected:
  ~PacedPort() override { host::PacePorts(0); }
};

// Seconds of processor time that the calling thread has used.
double ThreadTime() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct Passage {
  double seconds;
  double processor;
};

template <class Work>
Passage Timed(Work work) {
  const Clock::time_point start = Clock::now();
  const double processor = ThreadTime();
  work();
  return {std::chrono::duration<double>(Clock::now() - start).count(), ThreadTime() - processor};
}

TEST_F(PacedPort, PacesBothWaysAtOnceInTimeWithoutBusyWaiting) {
  host::PacePorts(38400);
  ControllerLine line;
  OpenedPort port(5000);
  const std::string second(3840, 'p');
  line.Send(second.substr(0, 3000));
  auto out =
      std::async(std::launch::async, [&] { return Timed([&] { EXPECT_EQ(port.Write(second), second.size()); }); });
  const Passage in = Timed([&] {
    DWORD mask = 0;
    for (std::size_t got = 0; got < second.size() && WaitCommEvent(port, &mask, nullptr);) {
      if (got == 0) line.Send(second.substr(3000));
      got += port.Read(port.Waiting()).size();
    }
  });
  const Passage written = out.get();
  for (const double seconds : {in.seconds, written.seconds}) {
    EXPECT_GT(seconds, 0.95) << "no byte comes before its time";
    EXPECT_LT(seconds, 1.2);
  }
  EXPECT_LT(in.processor, 0.6) << "busy waiting takes a second; a look every millisecond takes a quarter under Wine";
  EXPECT_LT(written.processor, 0.6);
  EXPECT_EQ(line.Receive(second.size()), second);
}

TEST_F(PacedPort, APacedWriteEndsWithItsTotalTimeout) {
  host::PacePorts(9600);
  ControllerLine line;
  OpenedPort port(200);
  const DWORD written = port.Write(std::string(4000, 'p'));
  EXPECT_NEAR(written, 192.0, 12.0);
  EXPECT_EQ(line.Receive(written), std::string(written, 'p'));
}

TEST_F(PacedPort, ClearingTheMaskEndsAPacedWait) {
  host::PacePorts(300);
  ControllerLine line;
  OpenedPort port;
  DWORD mask = 1;
  std::promise<void> begins;
  auto wait = std::async(std::launch::async, [&] {
    begins.set_value();
    return WaitCommEvent(port, &mask, nullptr);
  });
  begins.get_future().wait();
  EXPECT_EQ(wait.wait_for(milliseconds(100)), std::future_status::timeout);
  EXPECT_TRUE(SetCommMask(port, 0));
  EXPECT_TRUE(wait.get());
  EXPECT_EQ(mask, 0u);
}

TEST(Pacer, LetsAByteThroughWhenItsTenBitsHavePassed) {
  host::Pacer pacer;
  const host::Pacer::Clock::time_point start = host::Pacer::Clock::time_point() + std::chrono::hours(1);
  EXPECT_EQ(pacer.Ready(100, 10000, start), 1u);  // a rested line has a millisecond of credit
  pacer.Take(1, 10000);
  EXPECT_EQ(pacer.Ready(99, 10000, start + std::chrono::microseconds(999)), 0u);
  EXPECT_EQ(pacer.Ready(99, 10000, pacer.NextReady(99, 10000)), 1u);
  EXPECT_EQ(pacer.Ready(99, 10000, start + milliseconds(50)), 50u);
}

TEST(Pacer, KeepsTheRateHoweverLateItIsAsked) {
  host::Pacer pacer;
  const host::Pacer::Clock::time_point start = host::Pacer::Clock::time_point() + std::chrono::hours(1);
  std::size_t passed = 0;
  for (int ms = 0; ms <= 10000; ms += 7) {
    const std::size_t ready = pacer.Ready(100000, 38400, start + milliseconds(ms));
    pacer.Take(ready, 38400);
    passed += ready;
  }
  EXPECT_NEAR(static_cast<double>(passed), 38400.0, 40.0);
}

TEST(Pacer, GivesNoCreditForTimeAtRest) {
  host::Pacer pacer;
  const host::Pacer::Clock::time_point start = host::Pacer::Clock::time_point() + std::chrono::hours(1);
  pacer.Ready(0, 10000, start);
  EXPECT_EQ(pacer.Ready(1000, 10000, start + std::chrono::seconds(10)), 1u);
}

TEST(Pacer, GivesNoCreditBeyondWhatWaited) {
  host::Pacer pacer;
  const host::Pacer::Clock::time_point start = host::Pacer::Clock::time_point() + std::chrono::hours(1);
  pacer.Ready(5, 10000, start);
  EXPECT_EQ(pacer.Ready(5, 10000, start + std::chrono::seconds(10)), 5u);
  pacer.Take(5, 10000);
  EXPECT_EQ(pacer.Ready(1000, 10000, start + std::chrono::seconds(10)), 1u);
}

}  // namespace
