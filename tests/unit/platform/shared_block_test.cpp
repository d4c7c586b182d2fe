// Named mutexes and named shared memory.
#include "platform/shared_block.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "platform/lock.h"
#include "support/test_application.h"

namespace {

using qxcm::Guard;
using qxcm::NamedMutex;
using qxcm::SharedBlock;
using qxtest::Failing;

constexpr WCHAR kBlock[] = u"qxtest.block";
constexpr WCHAR kMutex[] = u"qxtest.block.mutex";

/// Checks at its end that no handle has been left behind.
struct HandleCount {
  ~HandleCount() { EXPECT_EQ(host::LibraryHandles(), before) << "handles are left"; }
  const std::size_t before = host::LibraryHandles();
};

std::string ErrorOfMaking() {
  try {
    SharedBlock block(kBlock, kMutex, 128);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(SharedBlock, IsCreatedByTheFirstAndOpenedByTheNext) {
  const HandleCount handles;
  const SharedBlock first(kBlock, kMutex, 128);
  const SharedBlock second(kBlock, kMutex, 128);
  EXPECT_TRUE(first.created());
  EXPECT_FALSE(second.created());
}

TEST(SharedBlock, OfOneNameIsOneMemory) {
  const HandleCount handles;
  SharedBlock first(kBlock, kMutex, 128);
  SharedBlock second(kBlock, kMutex, 128);
  {
    Guard guard(first.mutex());
    std::memset(first.bytes(), 0x5A, 128);
  }
  Guard guard(second.mutex());
  EXPECT_EQ(second.bytes()[0], std::byte{0x5A});
  EXPECT_EQ(second.bytes()[127], std::byte{0x5A});
}

TEST(SharedBlock, IsZeroAtFirst) {
  const HandleCount handles;
  SharedBlock block(kBlock, kMutex, 128);
  Guard guard(block.mutex());
  for (int i = 0; i < 128; ++i) EXPECT_EQ(block.bytes()[i], std::byte{0});
}

TEST(SharedBlock, ThrowsWhenThereIsNoMapping) {
  const HandleCount handles;
  const Failing fault("CreateFileMappingW");
  EXPECT_EQ(ErrorOfMaking(), "FileMapping create failed.");
}

TEST(SharedBlock, ThrowsWhenThereIsNoView) {
  const HandleCount handles;
  const Failing fault("MapViewOfFile");
  EXPECT_EQ(ErrorOfMaking(), "FileMapping create failed.");
}

TEST(SharedBlock, ThrowsWhenThereIsNoMutex) {
  const HandleCount handles;
  const Failing fault("CreateMutexW");
  EXPECT_EQ(ErrorOfMaking(), "Mutex create failed.");
}

TEST(SharedBlock, DoesNotTakeAnOldErrorForAnExistingBlock) {
  const HandleCount handles;
  SetLastError(ERROR_ALREADY_EXISTS);
  EXPECT_TRUE(SharedBlock(kBlock, kMutex, 128).created());
}

TEST(NamedMutex, IsFreeWhenItsOwnerHasDied) {
  const HandleCount handles;
  NamedMutex mutex(kMutex);
  std::thread([] {
    const HANDLE same = host::CreateMutexW(nullptr, FALSE, kMutex);
    host::WaitForSingleObject(same, INFINITE);
    host::CloseHandle(same);
  }).join();
  qxtest::Watchdog watchdog;
  Guard guard(mutex);
  SUCCEED();
}

TEST(NamedMutex, ThrowsWhenThePlatformRefusesTheWait) {
  const HandleCount handles;
  NamedMutex mutex(kMutex);
  const Failing fault("WaitForSingleObject", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  const Failing waits("WaitForMultipleObjects", ERROR_INVALID_HANDLE, 1, qxtest::kForGood);
  EXPECT_THROW(Guard guard(mutex), std::runtime_error);
}

}  // namespace
