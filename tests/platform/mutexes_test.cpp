// Mutexes: who owns them, and what is left of an owner that ended.
#include <gtest/gtest.h>

#include <thread>

#include "kernel_objects.h"

namespace platform_test {
namespace {

DWORD WaitOnAnotherThread(HANDLE object, DWORD milliseconds) {
  return TestThread([=] { return Wait(object, milliseconds); }).Join();
}

TEST(Mutex, ItsOwnerTakesItAgainAndReleasesItAsOften) {
  const Handle mutex = OwnedMutex();
  EXPECT_EQ(Wait(mutex, 0), WAIT_OBJECT_0);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(WaitOnAnotherThread(mutex, 0), WAIT_TIMEOUT);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_OWNER));
}

TEST(Mutex, AnotherThreadCannotReleaseIt) {
  const Handle mutex = OwnedMutex();
  TestThread other([&] { return ReleaseMutex(mutex) == FALSE ? GetLastError() : 0; });
  EXPECT_EQ(other.Join(), static_cast<DWORD>(ERROR_NOT_OWNER));
  EXPECT_EQ(WaitOnAnotherThread(mutex, 0), WAIT_TIMEOUT);
}

TEST(Mutex, ReleasingWhatIsNoMutexFails) {
  const Handle event = ManualEvent();
  EXPECT_EQ(ReleaseMutex(event), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Mutex, ReleasedMutexGoesToTheThreadThatWaits) {
  const Handle mutex = OwnedMutex();
  TestThread waiter([&] { return Wait(mutex) == WAIT_OBJECT_0 && ReleaseMutex(mutex) != FALSE ? 1 : 0; });
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(waiter.Join(), 1u);
}

TEST(Mutex, ThreadThatEndsAbandonsIt) {
  const Handle mutex = FreeMutex();
  EXPECT_EQ(WaitOnAnotherThread(mutex, 0), WAIT_OBJECT_0);
  EXPECT_EQ(Wait(mutex), WAIT_ABANDONED);
  EXPECT_NE(ReleaseMutex(mutex), FALSE) << "whoever is told so owns it";
  EXPECT_EQ(Wait(mutex, 0), WAIT_OBJECT_0) << "and is told once";
}

TEST(Mutex, AnyThreadOfTheProgramAbandonsIt) {
  const Handle mutex = FreeMutex();
  std::thread([&] { Wait(mutex, 0); }).join();
  EXPECT_EQ(Wait(mutex), WAIT_ABANDONED);
}

TEST(Mutex, AbandoningWakesTheNextWaiter) {
  const Handle mutex = FreeMutex(), taken = ManualEvent(), end = ManualEvent();
  TestThread owner([&] {
    Wait(mutex, 0);
    Set(taken);
    return Wait(end);
  });
  Wait(taken);
  TestThread waiter([&] { return Wait(mutex); });
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  Set(end);
  EXPECT_EQ(waiter.Join(), WAIT_ABANDONED);
}

TEST(Mutex, AbandonedOneAmongSeveralTellsItsIndex) {
  const Handle event = ManualEvent(), mutex = FreeMutex();
  WaitOnAnotherThread(mutex, 0);
  const HANDLE objects[] = {event, mutex};
  EXPECT_EQ(WaitForMultipleObjects(2, objects, FALSE, kLong), WAIT_ABANDONED_0 + 1);
}

TEST(Mutex, KeepsNoHoldOnAThreadWhenItsLastHandleIsClosed) {
  TestThread owner([] {
    OwnedMutex().Close();
    const Handle mutex = OwnedMutex();
    return ReleaseMutex(mutex) != FALSE ? 1 : 0;
  });
  EXPECT_EQ(owner.Join(), 1u);
}

TEST(NamedMutex, TwoHandlesAreOneMutex) {
  const Handle mutex = OwnedMutex(TEXT("QX-TEST.mutex"));
  const Handle again = FreeMutex(TEXT("QX-TEST.mutex"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(WaitOnAnotherThread(again, 0), WAIT_TIMEOUT);
  EXPECT_NE(ReleaseMutex(again), FALSE);
  EXPECT_EQ(WaitOnAnotherThread(mutex, 0), WAIT_OBJECT_0);
}

TEST(NamedMutex, ExistingOneIsNotOwnedByWhoAsksToOwnIt) {
  const Handle mutex = FreeMutex(TEXT("QX-TEST.mutex"));
  const Handle again = OwnedMutex(TEXT("QX-TEST.mutex"));
  EXPECT_EQ(ReleaseMutex(again), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_OWNER));
}

TEST(NamedMutex, ThreadThatEndsAbandonsIt) {
  const Handle mutex = FreeMutex(TEXT("QX-TEST.mutex"));
  EXPECT_EQ(WaitOnAnotherThread(mutex, 0), WAIT_OBJECT_0);
  EXPECT_EQ(Wait(mutex), WAIT_ABANDONED);
}

TEST(NamedMutex, ThreadThatEndsLeavesThoseOfOthersAlone) {
  const Handle own = OwnedMutex(TEXT("QX-TEST.own")), other = FreeMutex(TEXT("QX-TEST.mutex"));
  EXPECT_EQ(WaitOnAnotherThread(other, 0), WAIT_OBJECT_0);
  EXPECT_EQ(Wait(other), WAIT_ABANDONED);
  EXPECT_EQ(WaitOnAnotherThread(own, 0), WAIT_TIMEOUT);
}

TEST(NamedMutex, ReleasedMutexGoesToTheThreadThatWaits) {
  const Handle mutex = OwnedMutex(TEXT("QX-TEST.mutex"));
  TestThread waiter([&] { return Wait(mutex) == WAIT_OBJECT_0 && ReleaseMutex(mutex) != FALSE ? 1 : 0; });
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(waiter.Join(), 1u);
}

}  // namespace
}  // namespace platform_test
