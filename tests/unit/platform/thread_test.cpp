// Threads that are made suspended, resumed and joined.
#include "platform/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "support/test_application.h"

namespace {

using qxcm::Thread;
using qxtest::Failing;

struct Counted {
  bool Create() {
    return thread.Create([this] { ++runs; });
  }

  Thread thread;
  std::atomic<int> runs{0};
};

TEST(Thread, DoesNotRunBeforeItIsResumed) {
  Counted counted;
  ASSERT_TRUE(counted.Create());
  EXPECT_EQ(host::WaitForSingleObject(counted.thread.handle(), 30), WAIT_TIMEOUT);
  EXPECT_EQ(counted.runs, 0);
  EXPECT_FALSE(counted.thread.finished());
  counted.thread.Start();
  counted.thread.Join();
  EXPECT_EQ(counted.runs, 1);
  EXPECT_TRUE(counted.thread.finished());
}

TEST(Thread, CountsAsFinishedBeforeItIsMade) {
  Counted counted;
  EXPECT_TRUE(counted.thread.finished());
  EXPECT_FALSE(counted.thread.created());
  counted.thread.Join();
}

TEST(Thread, CanBeMadeAgainWhenJoined) {
  Counted counted;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(counted.Create());
    counted.thread.Start();
    counted.thread.Join();
  }
  EXPECT_EQ(counted.runs, 3);
}

TEST(Thread, LeavesNoHandleAndNoThreadBehind) {
  Counted counted;
  const std::size_t handles = host::LibraryHandles();
  ASSERT_TRUE(counted.thread.Create([] {}));
  EXPECT_EQ(host::LibraryHandles(), handles + 1);
  EXPECT_EQ(host::LibraryThreads(), 1u);
  counted.thread.Start();
  counted.thread.Join();
  EXPECT_EQ(host::LibraryHandles(), handles);
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(Thread, TellsWhenThePlatformHasNone) {
  Counted counted;
  const Failing fault("CreateThread");
  EXPECT_FALSE(counted.Create());
  EXPECT_FALSE(counted.thread.created());
  EXPECT_TRUE(counted.thread.finished());
}

TEST(Thread, IsResumedThoughThePlatformRefusesAtFirst) {
  Counted counted;
  ASSERT_TRUE(counted.Create());
  const Failing fault("ResumeThread", ERROR_INVALID_HANDLE, 1, 3);
  counted.thread.Start();
  counted.thread.Join();
  EXPECT_EQ(counted.runs, 1);
}

TEST(ThreadDeathTest, CountsAsNotMadeWhenThePlatformNeverResumesIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // the thread stays behind: in a process of its own
  EXPECT_EXIT(
      {
        qxtest::Watchdog watchdog;
        const Failing fault("ResumeThread", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
        Counted counted;
        counted.Create();
        counted.thread.Start();
        std::_Exit(counted.thread.created() || !counted.thread.finished() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(Thread, IsJoinedThoughThePlatformRefusesTheWait) {
  Counted counted;
  const Failing fault("MsgWaitForMultipleObjectsEx", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  const Failing wait("WaitForSingleObject", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  ASSERT_TRUE(counted.Create());
  counted.thread.Start();
  counted.thread.Join();
  EXPECT_EQ(counted.runs, 1);
  EXPECT_TRUE(counted.thread.finished());
}

}  // namespace
