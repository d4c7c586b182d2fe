// Waiting for one object and for several of different kinds.
#include <gtest/gtest.h>

#include <vector>

#include "kernel_objects.h"

namespace platform_test {
namespace {

DWORD WaitAny(const std::vector<HANDLE>& objects, DWORD milliseconds = kLong) {
  return WaitForMultipleObjects(static_cast<DWORD>(objects.size()), objects.data(), FALSE, milliseconds);
}

DWORD WaitAll(const std::vector<HANDLE>& objects, DWORD milliseconds = kLong) {
  return WaitForMultipleObjects(static_cast<DWORD>(objects.size()), objects.data(), TRUE, milliseconds);
}

TEST(Wait, TimesOutNoEarlierThanAsked) {
  const Handle event = AutoEvent();
  const DWORD start = GetTickCount();
  EXPECT_EQ(Wait(event, 60), WAIT_TIMEOUT);
  EXPECT_GE(GetTickCount() - start, 60u - 16u) << "less one step of a coarse clock";
}

TEST(Wait, ForAClosedHandleFails) {
  HANDLE event = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  CloseHandle(event);
  EXPECT_EQ(Wait(event, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Wait, ForNoHandleFails) {
  EXPECT_EQ(Wait(nullptr, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(WaitForSeveral, OneBadHandleFailsAllAndTakesNothing) {
  const Handle event(CreateEventW(nullptr, FALSE, TRUE, nullptr));
  EXPECT_EQ(WaitAny({event, nullptr}, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_TRUE(IsSet(event));
}

TEST(WaitForSeveral, TellsTheLowestOfThoseThatAreReady) {
  const Handle first = ManualEvent(), second = ManualEvent(), third = ManualEvent();
  Set(third);
  Set(second);
  EXPECT_EQ(WaitAny({first, second, third}), WAIT_OBJECT_0 + 1);
}

TEST(WaitForSeveral, TakesOnlyTheObjectItTells) {
  const Handle first = AutoEvent(), second = AutoEvent();
  Set(first);
  Set(second);
  EXPECT_EQ(WaitAny({first, second}), WAIT_OBJECT_0);
  EXPECT_EQ(WaitAny({first, second}), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(WaitAny({first, second}, 0), WAIT_TIMEOUT);
}

TEST(WaitForSeveral, TellsTheFirstPlaceOfAnObjectThatIsThereTwice) {
  const Handle other = AutoEvent(), event = AutoEvent();
  TestThread waiter([&] { return WaitAny({other, event, event}); });
  Set(event);
  EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0 + 1);
  EXPECT_FALSE(IsSet(event));
}

TEST(WaitForSeveral, IsWokenByAnyOfThemWhileItBlocks) {
  const Handle stop = ManualEvent(), send = ManualEvent();
  for (const DWORD expected : {0u, 1u}) {
    TestThread waiter([&] { return WaitAny({stop, send}); });
    EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
    Set(expected == 0 ? stop : send);
    EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0 + expected);
    Reset(stop);
  }
}

TEST(WaitForSeveral, MixesEventsMutexesAndThreads) {
  const Handle event = AutoEvent(), mutex = FreeMutex(), go = ManualEvent();
  TestThread thread([&] { return Wait(go); });
  EXPECT_EQ(WaitAny({event, thread.handle(), mutex}), WAIT_OBJECT_0 + 2);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  Set(go);
  EXPECT_EQ(WaitAny({event, thread.handle()}), WAIT_OBJECT_0 + 1);
}

TEST(WaitForSeveral, TakesSixtyFourObjectsAndNoMore) {
  std::vector<Handle> events;
  std::vector<HANDLE> handles;
  for (int i = 0; i < 65; ++i) handles.push_back(events.emplace_back(AutoEvent()));
  EXPECT_EQ(WaitAny(handles, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  handles.pop_back();
  Set(handles[63]);
  EXPECT_EQ(WaitAny(handles), WAIT_OBJECT_0 + 63);
}

TEST(WaitForSeveral, RefusesNone) {
  const Handle event = ManualEvent();
  const HANDLE objects[] = {event};
  EXPECT_EQ(WaitForMultipleObjects(0, objects, FALSE, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(WaitForAll, TakesNothingBeforeEverythingIsReady) {
  const Handle first = AutoEvent(), second = AutoEvent();
  Set(first);
  EXPECT_EQ(WaitAll({first, second}, kShort), WAIT_TIMEOUT);
  EXPECT_TRUE(IsSet(first));
}

TEST(WaitForAll, TakesEverythingAtOnce) {
  const Handle event = AutoEvent(), mutex = OwnedMutex();
  TestThread waiter([&] { return WaitAll({event, mutex}); });
  Set(event);
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0);
  EXPECT_FALSE(IsSet(event));
}

TEST(WaitForAll, WaitsForNamedAndUnnamedObjectsTogether) {
  const Handle named = AutoEvent(TEXT("QX-TEST.all")), unnamed = AutoEvent();
  TestThread waiter([&] { return WaitAll({named, unnamed}); });
  Set(named);
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  Set(unnamed);
  EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0);
  EXPECT_FALSE(IsSet(named));
}

TEST(WaitForSeveral, IsWokenByAnUnnamedEventBesideANamedOne) {
  const Handle stop = ManualEvent(), key = ManualEvent(TEXT("QX-TEST.key"));
  TestThread waiter([&] { return WaitAny({stop, key}); });
  EXPECT_EQ(Wait(waiter.handle(), kShort), WAIT_TIMEOUT);
  Set(stop);
  EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0);
}

TEST(WaitForSeveral, TimesOutBesideANamedObject) {
  const Handle stop = ManualEvent(), key = ManualEvent(TEXT("QX-TEST.key"));
  const DWORD start = GetTickCount();
  EXPECT_EQ(WaitAny({stop, key}, 60), WAIT_TIMEOUT);
  EXPECT_GE(GetTickCount() - start, 60u - 16u);
}

}  // namespace
}  // namespace platform_test
