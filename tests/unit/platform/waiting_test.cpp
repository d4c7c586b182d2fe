// Waits that let sent messages through, and the lock made of them.
#include "platform/waiting.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "common/calls/calls.h"
#include "common/sync/sync.h"
#include "common/windows/windows_messages.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "support/test_application.h"

namespace {

using qxcm::Event;
using qxcm::Guard;
using qxcm::WaitLettingSentMessagesThrough;
using qxcm::WindowSafeLock;
using qxtest::Failing;
using qxtest::TestWindow;
using qxtest::Watchdog;

TEST(WaitLettingSentMessagesThrough, EndsWhenTheObjectIsSignalled) {
  Event event;
  event.Set();
  EXPECT_TRUE(WaitLettingSentMessagesThrough(event.handle(), INFINITE));
}

TEST(WaitLettingSentMessagesThrough, EndsWhenTheTimeIsOver) {
  const Event event;
  EXPECT_FALSE(WaitLettingSentMessagesThrough(event.handle(), 0));
  EXPECT_FALSE(WaitLettingSentMessagesThrough(event.handle(), 20));
}

TEST(WaitLettingSentMessagesThrough, HandlesSentMessagesMeanwhile) {
  Watchdog watchdog;
  TestWindow window([](UINT, WPARAM, LPARAM) -> LRESULT { return 42; });
  Event event;
  auto waited = window.Start([&] { EXPECT_TRUE(WaitLettingSentMessagesThrough(event.handle(), INFINITE)); });
  EXPECT_EQ(host::SendMessageW(window.handle(), qxtest::kNotice, 1, 2), 42);
  EXPECT_EQ(host::SendMessageW(window.handle(), qxtest::kNotice, 1, 2), 42);
  event.Set();
  waited.get();
}

TEST(WaitLettingSentMessagesThrough, LeavesPostedMessagesInTheQueue) {
  Watchdog watchdog;
  TestWindow window;
  Event event;
  std::size_t seen_meanwhile = 99;
  auto waited = window.Start([&] {
    WaitLettingSentMessagesThrough(event.handle(), INFINITE);
    seen_meanwhile = window.seen().size();
  });
  host::PostMessageW(window.handle(), qxtest::kNotice, 1, 0);
  host::SendMessageW(window.handle(), qxtest::kNotice, 2, 0);
  event.Set();
  waited.get();
  EXPECT_EQ(seen_meanwhile, 1u) << "the sent one";
  EXPECT_EQ(window.WaitForSeen(2).back().wparam, 1u);
}

TEST(WaitLettingSentMessagesThrough, KeepsToItsTimeUnderManySentMessages) {
  Watchdog watchdog;
  TestWindow window;
  const Event event;
  bool signalled = true;
  auto waited = window.Start([&] { signalled = WaitLettingSentMessagesThrough(event.handle(), 50); });
  while (waited.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    host::SendMessageW(window.handle(), qxtest::kNotice, 1, 0);
  }
  EXPECT_FALSE(signalled);
}

TEST(WaitLettingSentMessagesThrough, DoesNotTakeARefusedWaitForASignal) {
  Event event;
  event.Set();
  const Failing fault("MsgWaitForMultipleObjectsEx", ERROR_INVALID_HANDLE);
  EXPECT_FALSE(WaitLettingSentMessagesThrough(event.handle(), INFINITE));
}

TEST(WindowSafeLock, MayBeTakenAgainByItsHolder) {
  WindowSafeLock lock;
  const auto take_again = [&] { Guard inner(lock); };
  Guard outer(lock);
  take_again();
  SUCCEED();
}

TEST(WindowSafeLock, KeepsOtherThreadsOut) {
  WindowSafeLock lock;
  int count = 0;
  const auto add = [&] {
    for (int i = 0; i < 2000; ++i) {
      Guard guard(lock);
      ++count;
    }
  };
  std::thread other(add);
  add();
  other.join();
  EXPECT_EQ(count, 4000);
}

TEST(WindowSafeLock, LetsSentMessagesThroughToTheThreadThatWaitsForIt) {
  Watchdog watchdog;
  TestWindow window([](UINT, WPARAM, LPARAM) -> LRESULT { return 7; });
  WindowSafeLock lock;
  lock.Enter();
  auto waited = window.Start([&] { Guard guard(lock); });
  EXPECT_EQ(host::SendMessageW(window.handle(), qxtest::kNotice, 0, 0), 7);
  lock.Leave();
  waited.get();
}

TEST(WindowSafeLock, ThrowsWhenThePlatformHasNothingToMakeItOf) {
  const Failing mutex("CreateMutexW");
  const Failing event("CreateEventW");
  EXPECT_THROW(WindowSafeLock(), std::runtime_error);
}

TEST(WindowSafeLock, IsHadThoughThePlatformRefusesToWait) {
  Watchdog watchdog;
  WindowSafeLock lock;
  lock.Enter();
  const Failing fault("MsgWaitForMultipleObjectsEx", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  std::thread other([&] { Guard guard(lock); });
  lock.Leave();
  other.join();
}

TEST(WindowSafeLock, IsGivenUpThoughThePlatformRefusesOnce) {
  Watchdog watchdog;
  WindowSafeLock lock;
  lock.Enter();
  {
    const Failing release("ReleaseMutex", ERROR_GEN_FAILURE);
    const Failing set("EventModify", ERROR_GEN_FAILURE);
    lock.Leave();
  }
  std::thread([&] { Guard guard(lock); }).join();
}

}  // namespace
