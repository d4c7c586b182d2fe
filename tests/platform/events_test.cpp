// Events within one process, and what names do.
#include <gtest/gtest.h>

#include "kernel_objects.h"

namespace platform_test {
namespace {

TEST(Event, AutoResetEventIsResetByTheWaitItEnds) {
  const Handle event = AutoEvent();
  Set(event);
  EXPECT_EQ(Wait(event, 0), WAIT_OBJECT_0);
  EXPECT_EQ(Wait(event, 0), WAIT_TIMEOUT);
}

TEST(Event, ManualResetEventStaysSetUntilItIsReset) {
  const Handle event = ManualEvent();
  Set(event);
  EXPECT_TRUE(IsSet(event));
  EXPECT_TRUE(IsSet(event));
  Reset(event);
  EXPECT_FALSE(IsSet(event));
}

TEST(Event, StartsSetWhenAskedTo) {
  const Handle event(CreateEventW(nullptr, FALSE, TRUE, nullptr));
  EXPECT_TRUE(IsSet(event));
  EXPECT_FALSE(IsSet(event));
}

TEST(Event, SettingTwiceCountsOnce) {
  const Handle event = AutoEvent();
  Set(event);
  Set(event);
  EXPECT_TRUE(IsSet(event));
  EXPECT_FALSE(IsSet(event));
}

TEST(Event, AutoResetEventWakesOneOfTwoWaitingThreads) {
  const Handle event = AutoEvent();
  TestThread first([&] { return Wait(event); });
  TestThread second([&] { return Wait(event); });
  const HANDLE threads[] = {first.handle(), second.handle()};
  Set(event);
  const DWORD woken = WaitForMultipleObjects(2, threads, FALSE, kLong);
  ASSERT_LE(woken, WAIT_OBJECT_0 + 1);
  EXPECT_EQ(Wait(threads[1 - woken], kShort), WAIT_TIMEOUT);
  Set(event);
  EXPECT_EQ(WaitForMultipleObjects(2, threads, TRUE, kLong), WAIT_OBJECT_0);
}

TEST(Event, ManualResetEventWakesAllWaitingThreads) {
  const Handle event = ManualEvent();
  TestThread first([&] { return Wait(event); });
  TestThread second([&] { return Wait(event); });
  Set(event);
  EXPECT_EQ(first.Join(), WAIT_OBJECT_0);
  EXPECT_EQ(second.Join(), WAIT_OBJECT_0);
}

TEST(Event, ModifyKnowsNothingButSetAndReset) {
  const Handle event = ManualEvent();
  for (const DWORD function : {0u, 4u, 99u}) {
    EXPECT_EQ(EventModify(event, function), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  }
  EXPECT_FALSE(IsSet(event));
}

TEST(Event, ModifyRefusesWhatIsNoEvent) {
  const Handle mutex = FreeMutex();
  EXPECT_EQ(EventModify(mutex, kEventSet), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Event, ClosingAHandleTwiceFails) {
  HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  EXPECT_NE(CloseHandle(event), FALSE);
  EXPECT_EQ(CloseHandle(event), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(NamedEvent, NewOneLeavesNoError) {
  SetLastError(ERROR_ACCESS_DENIED);
  const Handle event = ManualEvent(TEXT("QX-TEST.new"));
  EXPECT_NE(event, nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(NamedEvent, SecondHandleNamesTheSameEventAndSaysSo) {
  const Handle event = ManualEvent(TEXT("QX-TEST.same"));
  const Handle again(CreateEventW(nullptr, FALSE, TRUE, TEXT("QX-TEST.same")));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_FALSE(IsSet(event)) << "the second creation's initial state is ignored";
  Set(event);
  EXPECT_TRUE(IsSet(again));
  EXPECT_TRUE(IsSet(again)) << "it stays a manual-reset event";
}

TEST(NamedEvent, NamesDifferByCase) {
  const Handle lower = ManualEvent(TEXT("QX-TEST.case"));
  const Handle upper = ManualEvent(TEXT("QX-TEST.CASE"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  Set(lower);
  EXPECT_FALSE(IsSet(upper));
}

TEST(NamedEvent, NameOfAnotherKindOfObjectIsRefused) {
  const Handle mutex = FreeMutex(TEXT("QX-TEST.kind"));
  EXPECT_EQ(ManualEvent(TEXT("QX-TEST.kind")), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  EXPECT_EQ(Block(TEXT("QX-TEST.kind"), 16), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(NamedEvent, IsGoneWithItsLastHandle) {
  Handle first = ManualEvent(TEXT("QX-TEST.gone"));
  Handle second = ManualEvent(TEXT("QX-TEST.gone"));
  Set(first);
  first.Close();
  EXPECT_TRUE(IsSet(second));
  second.Close();
  const Handle fresh = ManualEvent(TEXT("QX-TEST.gone"));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_FALSE(IsSet(fresh));
}

}  // namespace
}  // namespace platform_test
