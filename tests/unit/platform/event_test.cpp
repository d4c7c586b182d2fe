// Manual-reset events and the wait for two of them.
#include "platform/event.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "common/calls/calls.h"
#include "common/sync/sync.h"
#include "support/test_application.h"

namespace {

using qxcm::Event;
using qxcm::WaitForEither;
using qxcm::Woken;
using qxtest::Failing;

bool Signalled(const Event& event) { return host::WaitForSingleObject(event.handle(), 0) == WAIT_OBJECT_0; }

TEST(Event, IsNotSignalledAtFirst) {
  const Event event;
  EXPECT_FALSE(Signalled(event));
  EXPECT_FALSE(event.WasSet());
}

TEST(Event, StaysSignalledUntilItIsReset) {
  Event event;
  event.Set();
  EXPECT_TRUE(Signalled(event));
  EXPECT_TRUE(Signalled(event));
  EXPECT_TRUE(event.WasSet());
  event.Reset();
  EXPECT_FALSE(Signalled(event));
  EXPECT_FALSE(event.WasSet());
}

TEST(Event, OfOneNameIsOneEvent) {
  Event one(u"qxtest.event");
  Event other(u"qxtest.event");
  one.Set();
  EXPECT_TRUE(Signalled(other));
  other.Reset();
  EXPECT_FALSE(Signalled(one));
}

TEST(Event, WithoutANameIsItsOwn) {
  Event one;
  const Event other;
  one.Set();
  EXPECT_FALSE(Signalled(other));
}

TEST(Event, ThrowsWhenThePlatformHasNone) {
  const Failing fault("CreateEventW");
  EXPECT_THROW(Event(), std::runtime_error);
}

TEST(WaitForEither, TellsWhichEventEndedIt) {
  Event first;
  Event second;
  first.Set();
  EXPECT_EQ(WaitForEither(first, second), Woken::kFirst);
  first.Reset();
  second.Set();
  EXPECT_EQ(WaitForEither(first, second), Woken::kSecond);
}

TEST(WaitForEither, PrefersTheFirst) {
  Event first;
  Event second;
  first.Set();
  second.Set();
  EXPECT_EQ(WaitForEither(first, second), Woken::kFirst);
}

TEST(WaitForEither, EndsWithNeitherWhenThePlatformRefusesTheWaitAndNoneWasSet) {
  const Event first;
  const Event second;
  const Failing fault("WaitForMultipleObjects", ERROR_INVALID_HANDLE);
  EXPECT_EQ(WaitForEither(first, second), Woken::kNeither);
}

TEST(WaitForEither, TellsOfAnEventThatWasSetThoughThePlatformRefusesTheWait) {
  Event first;
  Event second;
  const Failing fault("WaitForMultipleObjects", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  second.Set();
  EXPECT_EQ(WaitForEither(first, second), Woken::kSecond);
  first.Set();
  EXPECT_EQ(WaitForEither(first, second), Woken::kFirst);
}

TEST(WaitForEither, TellsOfAnEventThatThePlatformRefusedToSet) {
  qxtest::Watchdog watchdog;
  Event first;
  const Event second;
  const Failing fault("EventModify", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  std::thread setter([&] { first.Set(); });
  Woken woken = Woken::kNeither;
  while (woken == Woken::kNeither) woken = WaitForEither(first, second);
  EXPECT_EQ(woken, Woken::kFirst);
  setter.join();
}

TEST(Event, IsSetAndResetThoughThePlatformRefusesOnce) {
  Event event;
  {
    const Failing fault("EventModify", ERROR_INVALID_HANDLE);
    event.Set();
  }
  EXPECT_TRUE(Signalled(event));
  const Failing fault("EventModify", ERROR_INVALID_HANDLE);
  event.Reset();
  EXPECT_FALSE(Signalled(event));
}

}  // namespace
