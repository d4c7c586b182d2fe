// Many threads at once: nothing is lost, nothing hangs, nobody gets in twice.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "test_window.h"

namespace platform_test {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 300;

void OnThreads(int count, const std::function<void(int)>& work) {
  std::vector<std::unique_ptr<TestThread>> threads;
  for (int i = 0; i < count; ++i) {
    threads.push_back(std::make_unique<TestThread>([&work, i]() -> DWORD {
      work(i);
      return 0;
    }));
  }
}

// Pairs of threads hand a turn to and fro while all count under one mutex.
void PlayPairs(LPCWSTR mutex_name) {
  const Handle mutex = FreeMutex(mutex_name), stop = ManualEvent();
  std::vector<Handle> turns;
  for (int i = 0; i < kThreads; ++i) turns.push_back(AutoEvent());
  int count = 0;
  for (int i = 0; i < kThreads; i += 2) Set(turns[static_cast<std::size_t>(i)]);
  OnThreads(kThreads, [&](int i) {
    const auto own = static_cast<std::size_t>(i);
    const HANDLE objects[] = {stop, turns[own]};
    for (int round = 0; round < kRounds; ++round) {
      if (WaitForMultipleObjects(2, objects, FALSE, kLong) != WAIT_OBJECT_0 + 1) return;
      if (Wait(mutex) != WAIT_OBJECT_0) return;
      ++count;
      ReleaseMutex(mutex);
      Set(turns[own ^ 1]);
    }
  });
  EXPECT_EQ(count, kThreads * kRounds);
}

TEST(ManyThreads, NoTurnIsLost) { PlayPairs(nullptr); }

TEST(ManyThreads, NoTurnIsLostUnderANamedMutex) { PlayPairs(TEXT("QX-TEST.stress.mutex")); }

TEST(ManyThreads, EachSettingOfAnAutoResetEventWakesExactlyOne) {
  const Handle work = AutoEvent(), done = AutoEvent(), stop = ManualEvent();
  std::atomic<int> woken{0};
  const auto worker = [&]() -> DWORD {
    const HANDLE objects[] = {stop, work};
    while (WaitForMultipleObjects(2, objects, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
      ++woken;
      Set(done);
    }
    return 0;
  };
  TestThread first(worker), second(worker), third(worker);
  for (int i = 0; i < kRounds; ++i) {
    Set(work);
    ASSERT_EQ(Wait(done), WAIT_OBJECT_0);
  }
  Set(stop);
  EXPECT_EQ(first.Join() + second.Join() + third.Join(), 0u);
  EXPECT_EQ(woken, kRounds);
}

TEST(ManyThreads, TimeOutsAndSettingsThatMeetLoseNothing) {
  const Handle event = AutoEvent();
  std::atomic<int> taken{0};
  std::atomic<bool> over{false};
  TestThread waiter([&]() -> DWORD {
    while (!over || IsSet(event)) taken += Wait(event, 1) == WAIT_OBJECT_0 ? 1 : 0;
    return 0;
  });
  int set = 0;
  for (int i = 0; i < kRounds; ++i) {
    Set(event);
    ++set;
    while (taken < set) Sleep(i % 3 == 0 ? 1 : 0);
  }
  over = true;
  waiter.Join();
  EXPECT_EQ(taken, set);
}

TEST(ManyThreads, NamedEventsPassTheTurnRound) {
  const LPCWSTR names[] = {TEXT("QX-TEST.stress.0"), TEXT("QX-TEST.stress.1"), TEXT("QX-TEST.stress.2")};
  int count = 0;  // passed on with the turn
  const Handle starter = AutoEvent(names[0]);
  Set(starter);
  OnThreads(3, [&](int i) {
    const Handle own = AutoEvent(names[i]), next = AutoEvent(names[(i + 1) % 3]);
    for (int round = 0; round < kRounds; ++round) {
      if (Wait(own) != WAIT_OBJECT_0) return;
      ++count;
      Set(next);
    }
  });
  EXPECT_EQ(count, 3 * kRounds);
}

TEST(ManyThreads, ThreadsComeAndGo) {
  std::atomic<int> ran{0};
  OnThreads(kThreads, [&](int) {
    for (int i = 0; i < 50; ++i) {
      TestThread child([&] { return ran++, 0; }, CREATE_SUSPENDED);
      ResumeThread(child.handle());
    }
  });
  EXPECT_EQ(ran, kThreads * 50);
}

TEST(ManyThreads, AllSendToAll) {
  std::atomic<int> handled{0};
  const auto handler = [&](UINT, WPARAM, LPARAM) { return LRESULT{++handled}; };
  WindowThread first(handler), second(handler);
  const HWND receivers[] = {first.window(), second.window()};
  OnThreads(3, [&](int) {
    const TestWindow own;  // its thread handles sent messages while it waits
    for (int i = 0; i < 100; ++i) {
      for (HWND to : receivers) SendMessageW(to, WM_APP, 0, 0);
      PostMessageW(receivers[i % 2], WM_APP, 0, 0);
    }
  });
  first.Stop();
  second.Stop();
  EXPECT_EQ(handled, 3 * 100 * 3);
}

}  // namespace
}  // namespace platform_test
