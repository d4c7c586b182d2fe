// Threads and critical sections.
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "kernel_objects.h"

namespace platform_test {
namespace {

constexpr DWORD kStillActive = 259;

TEST(Thread, HandleIsSignalledWithTheExitCodeWhenItEnds) {
  const Handle go = ManualEvent();
  TestThread thread([&] { return Wait(go) == WAIT_OBJECT_0 ? 42u : 0u; });
  DWORD code = 0;
  EXPECT_NE(GetExitCodeThread(thread.handle(), &code), FALSE);
  EXPECT_EQ(code, kStillActive);
  EXPECT_EQ(Wait(thread.handle(), 0), WAIT_TIMEOUT);
  Set(go);
  EXPECT_EQ(Wait(thread.handle()), WAIT_OBJECT_0);
  EXPECT_EQ(thread.Join(), 42u);
}

TEST(Thread, WhatItDidIsSeenByWhoWaitedForIt) {
  int written = 0;
  TestThread thread([&] { return static_cast<DWORD>(written = 7); });
  EXPECT_EQ(Wait(thread.handle()), WAIT_OBJECT_0);
  EXPECT_EQ(written, 7);
}

TEST(Thread, SuspendedOneRunsWhenItIsResumed) {
  std::atomic<bool> ran{false};
  TestThread thread([&] { return ran = true, 0; }, CREATE_SUSPENDED);
  EXPECT_EQ(Wait(thread.handle(), kShort), WAIT_TIMEOUT);
  EXPECT_FALSE(ran);
  EXPECT_EQ(ResumeThread(thread.handle()), 1u);
  EXPECT_EQ(Wait(thread.handle()), WAIT_OBJECT_0);
  EXPECT_TRUE(ran);
}

TEST(Thread, SuspendedOneCanBeEndedBeforeItRuns) {
  std::atomic<bool> ran{false};
  TestThread thread([&] { return ran = true, 0; }, CREATE_SUSPENDED);
  EXPECT_NE(TerminateThread(thread.handle(), 7), FALSE);
  EXPECT_EQ(Wait(thread.handle()), WAIT_OBJECT_0);
  EXPECT_EQ(thread.Join(), 7u);
  EXPECT_FALSE(ran);
}

TEST(Thread, ResumingARunningOneTellsZero) {
  const Handle go = ManualEvent();
  TestThread thread([&] { return Wait(go); });
  EXPECT_EQ(ResumeThread(thread.handle()), 0u);
  Set(go);
}

TEST(Thread, ResumingWhatIsNoThreadFails) {
  const Handle event = ManualEvent();
  EXPECT_EQ(ResumeThread(event), 0xFFFFFFFFu);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Thread, RunsOnWhenItsHandleIsClosed) {
  struct Shared {
    Handle go = ManualEvent();
    Handle done = ManualEvent();
  } shared;
  const auto run = [](LPVOID argument) -> DWORD {
    const auto* its = static_cast<Shared*>(argument);
    Wait(its->go);
    Set(its->done);
    return 0;
  };
  static const LPTHREAD_START_ROUTINE start = run;
  CloseHandle(CreateThread(nullptr, 0, start, &shared, 0, nullptr));
  Set(shared.go);
  EXPECT_EQ(Wait(shared.done), WAIT_OBJECT_0);
}

TEST(Thread, HasTheNumberThatItsMakerWasTold) {
  TestThread thread([] { return GetCurrentThreadId(); });
  EXPECT_EQ(thread.Join(), thread.id());
  EXPECT_NE(thread.id(), GetCurrentThreadId());
}

TEST(Thread, LastErrorIsItsOwn) {
  SetLastError(ERROR_ACCESS_DENIED);
  TestThread thread([] {
    SetLastError(ERROR_IO_DEVICE);
    return GetLastError();
  });
  EXPECT_EQ(thread.Join(), static_cast<DWORD>(ERROR_IO_DEVICE));
  SetLastError(ERROR_ACCESS_DENIED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(Thread, SleepLastsAsLongAsAsked) {
  const DWORD start = GetTickCount();
  Sleep(60);
  EXPECT_GE(GetTickCount() - start, 60u - 16u) << "less one step of a coarse clock";
}

class CriticalSection : public testing::Test {
 protected:
  CriticalSection() { InitializeCriticalSection(&section_); }
  ~CriticalSection() override { DeleteCriticalSection(&section_); }
  bool OtherThreadCanEnter() {
    return TestThread([&]() -> DWORD {
             if (TryEnterCriticalSection(&section_) == FALSE) return 0;
             LeaveCriticalSection(&section_);
             return 1;
           }).Join() != 0;
  }
  CRITICAL_SECTION section_;
};

TEST_F(CriticalSection, ItsOwnerEntersAgainAndLeavesAsOften) {
  EnterCriticalSection(&section_);
  EXPECT_NE(TryEnterCriticalSection(&section_), FALSE);
  LeaveCriticalSection(&section_);
  EXPECT_FALSE(OtherThreadCanEnter());
  LeaveCriticalSection(&section_);
  EXPECT_TRUE(OtherThreadCanEnter());
}

TEST_F(CriticalSection, LetsOneThreadInAtATime) {
  constexpr int kRounds = 2000;
  int count = 0;
  const auto work = [&]() -> DWORD {
    for (int i = 0; i < kRounds; ++i) {
      EnterCriticalSection(&section_);
      ++count;
      LeaveCriticalSection(&section_);
    }
    return 0;
  };
  { TestThread first(work), second(work), third(work); }
  EXPECT_EQ(count, 3 * kRounds);
}

}  // namespace
}  // namespace platform_test
