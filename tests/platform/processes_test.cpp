// Named objects between two processes, and what is left of a process that ends or is killed.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "kernel_objects.h"
#include "second_process.h"

namespace platform_test {
namespace {

constexpr LPCWSTR kEventName = TEXT("QX-TEST.process.event");
constexpr LPCWSTR kMutexName = TEXT("QX-TEST.process.mutex");
constexpr LPCWSTR kBlockName = TEXT("QX-TEST.process.block");
constexpr std::size_t kBlockSize = 64;

struct Unmap {
  void operator()(char* view) const { UnmapViewOfFile(view); }
};
using BlockView = std::unique_ptr<char, Unmap>;

BlockView ViewOf(HANDLE block) { return BlockView(static_cast<char*>(MapViewOfFile(block, FILE_MAP_WRITE, 0, 0, 0))); }

const Role sets_event("sets_event", [](Conversation& first) {
  const Handle event = ManualEvent(kEventName);
  first.Tell("ready");
  if (first.Listen() == "set") Set(event);
  first.Listen();
});

TEST(BetweenProcesses, EventSetByTheOtherWakesAWaitForSeveral) {
  const Handle stop = ManualEvent(), event = ManualEvent(kEventName);
  SecondProcess other(sets_event);
  ASSERT_EQ(other.Listen(), "ready");
  const HANDLE objects[] = {stop, event};
  TestThread waiter([&] { return WaitForMultipleObjects(2, objects, FALSE, kLong); });
  EXPECT_EQ(Wait(waiter.handle(), kShort), DWORD{WAIT_TIMEOUT});
  other.Tell("set");
  EXPECT_EQ(waiter.Join(), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(other.Finish(), 0);
}

TEST(BetweenProcesses, EventStaysSetWhileAnyProcessHoldsIt) {
  Handle event = ManualEvent(kEventName);
  SecondProcess other(sets_event);
  ASSERT_EQ(other.Listen(), "ready");
  Set(event);
  event.Close();
  const Handle again = ManualEvent(kEventName);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_TRUE(IsSet(again));
}

TEST(BetweenProcesses, EventIsGoneWhenTheLastProcessHasEnded) {
  SecondProcess other(sets_event);
  ASSERT_EQ(other.Listen(), "ready");
  {
    const Handle event = ManualEvent(kEventName);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    Set(event);
  }
  EXPECT_EQ(other.Finish(), 0);
  const Handle fresh = ManualEvent(kEventName);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_FALSE(IsSet(fresh));
}

// "release" gives the mutex up; the end of the conversation ends the process with the mutex in its hands.
const Role takes_mutex("takes_mutex", [](Conversation& first) {
  const Handle mutex = FreeMutex(kMutexName);
  first.Tell(Wait(mutex) == WAIT_OBJECT_0 ? "taken" : "not taken");
  while (!first.Listen().empty()) {
    ReleaseMutex(mutex);
    first.Tell("released");
  }
});

TEST(BetweenProcesses, MutexKeepsTheOtherOut) {
  const Handle mutex = FreeMutex(kMutexName);
  SecondProcess other(takes_mutex);
  ASSERT_EQ(other.Listen(), "taken");
  EXPECT_EQ(Wait(mutex, kShort), DWORD{WAIT_TIMEOUT});
  EXPECT_EQ(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_OWNER));
  other.Tell("release");
  EXPECT_EQ(Wait(mutex), WAIT_OBJECT_0);
}

TEST(BetweenProcesses, MutexHeldHereKeepsTheOtherWaiting) {
  const Handle mutex = OwnedMutex(kMutexName);
  SecondProcess other(takes_mutex);
  Sleep(kShort);
  ReleaseMutex(mutex);
  EXPECT_EQ(other.Listen(), "taken");
}

TEST(BetweenProcesses, MutexOfAProcessThatEndsIsAbandoned) {
  const Handle mutex = FreeMutex(kMutexName);
  SecondProcess other(takes_mutex);
  ASSERT_EQ(other.Listen(), "taken");
  EXPECT_EQ(other.Finish(), 0);
  EXPECT_EQ(Wait(mutex), WAIT_ABANDONED);
}

TEST(BetweenProcesses, MutexOfAKilledProcessIsAbandoned) {
  const Handle mutex = FreeMutex(kMutexName);
  SecondProcess other(takes_mutex);
  ASSERT_EQ(other.Listen(), "taken");
  other.Kill();
  EXPECT_EQ(Wait(mutex, 0), WAIT_ABANDONED);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
  EXPECT_EQ(Wait(mutex, 0), WAIT_OBJECT_0);
}

TEST(BetweenProcesses, WaiterIsToldSoonThatTheOwnerWasKilled) {
  const Handle mutex = FreeMutex(kMutexName), stop = ManualEvent();
  SecondProcess other(takes_mutex);
  ASSERT_EQ(other.Listen(), "taken");
  const HANDLE objects[] = {stop, mutex};
  TestThread waiter([&] { return WaitForMultipleObjects(2, objects, FALSE, kLong); });
  EXPECT_EQ(Wait(waiter.handle(), kShort), DWORD{WAIT_TIMEOUT});
  other.Kill();
  EXPECT_EQ(Wait(waiter.handle(), kLong / 10), WAIT_OBJECT_0);
  EXPECT_EQ(waiter.Join(), WAIT_ABANDONED_0 + 1);
}

const Role writes_block("writes_block", [](Conversation& first) {
  const Handle block = Block(kBlockName, kBlockSize);
  const BlockView view = ViewOf(block);
  for (std::string text = first.Listen(); !text.empty(); text = first.Listen()) {
    std::strcpy(view.get(), text.c_str());
    first.Tell("written");
  }
});

TEST(BetweenProcesses, BlockShowsWhatTheOtherWrote) {
  const Handle block = Block(kBlockName, kBlockSize);
  const BlockView view = ViewOf(block);
  SecondProcess other(writes_block);
  other.Tell("key code 10");
  ASSERT_EQ(other.Listen(), "written");
  EXPECT_STREQ(view.get(), "key code 10");
}

TEST(BetweenProcesses, BlockMadeByTheOtherIsFoundWithItsContents) {
  SecondProcess other(writes_block);
  other.Tell("focus");
  ASSERT_EQ(other.Listen(), "written");
  const Handle block = Block(kBlockName, kBlockSize);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  EXPECT_STREQ(ViewOf(block).get(), "focus");
}

TEST(BetweenProcesses, BlockOfAKilledProcessIsGone) {
  SecondProcess other(writes_block);
  other.Tell("left behind");
  ASSERT_EQ(other.Listen(), "written");
  other.Kill();
  const Handle block = Block(kBlockName, kBlockSize);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  EXPECT_STREQ(ViewOf(block).get(), "");
}

TEST(BetweenProcesses, NameUsedForAnotherKindByTheOtherIsRefused) {
  SecondProcess other(sets_event);
  ASSERT_EQ(other.Listen(), "ready");
  EXPECT_EQ(FreeMutex(kEventName), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

// Counts in the block, under the mutex, as often as it is told.
void CountUnderMutex(int rounds) {
  const Handle mutex = FreeMutex(kMutexName), block = Block(kBlockName, kBlockSize);
  const BlockView view = ViewOf(block);
  for (int i = 0; i < rounds; ++i) {
    Wait(mutex);
    int count = 0;
    std::memcpy(&count, view.get(), sizeof count);
    ++count;
    std::memcpy(view.get(), &count, sizeof count);
    ReleaseMutex(mutex);
  }
}

const Role counts("counts", [](Conversation& first) {
  CountUnderMutex(std::stoi(first.Listen()));
  first.Tell("counted");
  first.Listen();
});

TEST(BetweenProcesses, MutexLetsOneProcessInAtATime) {
  constexpr int kRounds = 1000;
  const Handle block = Block(kBlockName, kBlockSize);
  const BlockView view = ViewOf(block);
  SecondProcess other(counts);
  other.Tell(std::to_string(kRounds));
  CountUnderMutex(kRounds);
  ASSERT_EQ(other.Listen(), "counted");
  int count = 0;
  std::memcpy(&count, view.get(), sizeof count);
  EXPECT_EQ(count, 2 * kRounds);
}

}  // namespace
}  // namespace platform_test
