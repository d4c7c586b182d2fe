// This host's handles and threads.
#include <gtest/gtest.h>

#include <cstdint>

#include "common/kernel/handles.h"
#include "kernel_objects.h"

namespace platform_test {
namespace {

TEST(Handles, StaleOneNeverNamesANewObject) {
  Handle event = ManualEvent();
  HANDLE stale = event;
  event.Close();
  for (int i = 0; i < 1000; ++i) {
    const Handle other = ManualEvent();
    ASSERT_NE(static_cast<HANDLE>(other), stale);
    ASSERT_EQ(Wait(stale, 0), WAIT_FAILED);
  }
}

TEST(Handles, NeighboursOfAHandleNameNothing) {
  const Handle event = ManualEvent();
  const auto value = reinterpret_cast<std::uintptr_t>(static_cast<HANDLE>(event));
  for (const std::uintptr_t wrong : {value + 1, value + 2, value | (std::uintptr_t{1} << 32), ~value}) {
    EXPECT_EQ(host::FindObject(reinterpret_cast<HANDLE>(wrong)), nullptr);
  }
}

TEST(HostThreads, HandleIsSignalledAfterThreadLocalObjectsHaveGone) {
  static DWORD gone = 0;
  struct Local {
    DWORD mark = 0;
    ~Local() { gone = mark; }
  };
  TestThread([] {
    thread_local Local local;
    return local.mark = 5;
  }).Join();
  EXPECT_EQ(gone, 5u);
}

}  // namespace
}  // namespace platform_test
