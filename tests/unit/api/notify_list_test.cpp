// The windows that hear of the controller's commands.
#include "api/notify_list.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "QXCommMgr.h"
#include "common/windows/windows_messages.h"
#include "support/test_application.h"

namespace {

using qxcm::NotifyList;
using qxtest::SeenMessage;
using qxtest::TestWindow;
using qxtest::Watchdog;
using Seen = std::vector<SeenMessage>;

constexpr UINT kOther = 0x9000;

struct List {
  std::atomic<bool> closing{false};
  NotifyList list{closing};
};

TEST(NotifyList, PostsToARegisteredWindow) {
  List of;
  TestWindow window;
  EXPECT_EQ(of.list.Register(window.handle(), qxtest::kNotice), QCM_OK);
  of.list.Post(1025, 7);
  EXPECT_EQ(window.WaitForSeen(1), (Seen{{qxtest::kNotice, 1025, 7, false}}));
}

TEST(NotifyList, SendsAndReturnsWhenTheWindowHasHandledIt) {
  List of;
  std::atomic<bool> handled{false};
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    handled = true;
    return 0;
  });
  of.list.Register(window.handle(), qxtest::kNotice);
  of.list.Send(256, -3);
  EXPECT_TRUE(handled);
  EXPECT_EQ(window.seen(), (Seen{{qxtest::kNotice, 256, -3, true}}));
}

TEST(NotifyList, ReachesEveryWindowUnderItsOwnNumber) {
  List of;
  TestWindow first;
  TestWindow second;
  of.list.Register(first.handle(), qxtest::kNotice);
  of.list.Register(second.handle(), kOther);
  of.list.Send(256, 0);
  EXPECT_EQ(first.seen(), (Seen{{qxtest::kNotice, 256, 0, true}}));
  EXPECT_EQ(second.seen(), (Seen{{kOther, 256, 0, true}}));
}

TEST(NotifyList, GoesThroughItsWindowsInTheOrderOfRegistration) {
  List of;
  std::vector<int> order;  // one window at a time handles the notice
  const auto note = [&](int number) {
    return [&order, number](UINT, WPARAM, LPARAM) -> LRESULT {
      order.push_back(number);
      return 0;
    };
  };
  TestWindow a(note(1));
  TestWindow b(note(2));
  TestWindow c(note(3));
  for (TestWindow* window : {&b, &c, &a}) of.list.Register(window->handle(), qxtest::kNotice);
  of.list.Register(b.handle(), kOther);
  of.list.Send(256, 0);
  EXPECT_EQ(order, (std::vector<int>{2, 3, 1})) << "registering again does not move a window";
}

TEST(NotifyList, KeepsOneEntryAWindowWithItsLastNumber) {
  List of;
  TestWindow window;
  EXPECT_EQ(of.list.Register(window.handle(), qxtest::kNotice), QCM_OK);
  EXPECT_EQ(of.list.Register(window.handle(), kOther), QCM_OK);
  of.list.Send(1, 0);
  EXPECT_EQ(window.seen(), (Seen{{kOther, 1, 0, true}}));
  EXPECT_EQ(of.list.Unregister(window.handle()), QCM_OK);
  EXPECT_EQ(of.list.Unregister(window.handle()), QCM_NOTHING_RECORDED);
}

TEST(NotifyList, TakesTheNumbersOfItsRangeOnly) {
  List of;
  TestWindow window;
  EXPECT_EQ(of.list.Register(window.handle(), 0x8000), QCM_OK);
  EXPECT_EQ(of.list.Register(window.handle(), 0xBFFF), QCM_OK);
  for (const UINT number : {0u, 0x400u, 0x7FFFu, 0xC000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(of.list.Register(window.handle(), number), QCM_BAD_ARGUMENT) << number;
  }
}

TEST(NotifyList, TakesWindowsOnly) {
  List of;
  TestWindow window;
  const HWND handle = window.handle();
  window.Destroy();
  EXPECT_EQ(of.list.Register(handle, qxtest::kNotice), QCM_BAD_ARGUMENT);
  EXPECT_EQ(of.list.Register(nullptr, qxtest::kNotice), QCM_BAD_ARGUMENT);
}

TEST(NotifyList, DoesNotKnowAWindowThatWasNeverRegistered) {
  List of;
  TestWindow window;
  EXPECT_EQ(of.list.Unregister(window.handle()), QCM_NOTHING_RECORDED);
  EXPECT_EQ(of.list.Unregister(nullptr), QCM_NOTHING_RECORDED);
}

TEST(NotifyList, ReachesAWindowNoMoreOnceItIsTakenOff) {
  List of;
  TestWindow window;
  TestWindow stays;
  of.list.Register(window.handle(), qxtest::kNotice);
  of.list.Register(stays.handle(), qxtest::kNotice);
  of.list.Unregister(window.handle());
  of.list.Send(1, 0);
  EXPECT_EQ(window.seen(), Seen());
  EXPECT_EQ(stays.seen().size(), 1u);
}

TEST(NotifyList, DropsADestroyedWindowAndReachesThoseBehindIt) {
  List of;
  TestWindow first;
  TestWindow gone;
  TestWindow also_gone;
  TestWindow last;
  for (TestWindow* window : {&first, &gone, &also_gone, &last}) of.list.Register(window->handle(), qxtest::kNotice);
  gone.Destroy();
  also_gone.Destroy();
  of.list.Post(1, 0);
  EXPECT_EQ(first.WaitForSeen(1).size(), 1u);
  EXPECT_EQ(last.WaitForSeen(1).size(), 1u);
  EXPECT_EQ(of.list.Unregister(gone.handle()), QCM_NOTHING_RECORDED);
  EXPECT_EQ(of.list.Unregister(also_gone.handle()), QCM_NOTHING_RECORDED);
}

TEST(NotifyList, KeepsADestroyedWindowUntilTheNextNotice) {
  List of;
  TestWindow window;
  of.list.Register(window.handle(), qxtest::kNotice);
  window.Destroy();
  EXPECT_EQ(of.list.Unregister(window.handle()), QCM_OK);
}

TEST(NotifyList, GoesOnWhenAWindowGoesWhileItHandlesANotice) {
  List of;
  TestWindow* leaving = nullptr;
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    leaving->Destroy();
    return 0;
  });
  leaving = &window;
  TestWindow last;
  of.list.Register(window.handle(), qxtest::kNotice);
  of.list.Register(last.handle(), qxtest::kNotice);
  of.list.Send(1, 0);
  EXPECT_EQ(last.seen().size(), 1u);
}

TEST(NotifyList, ReachesNobodyWhileTheServiceIsClosing) {
  List of;
  TestWindow window;
  of.list.Register(window.handle(), qxtest::kNotice);
  of.closing = true;
  of.list.Post(1, 0);
  of.list.Send(2, 0);
  window.Run([] {});  // what was posted before has been handled
  EXPECT_EQ(window.seen(), Seen());
}

TEST(NotifyList, EndsItsWalkWhenAWindowHasClosedTheService) {
  List of;
  TestWindow first([&](UINT, WPARAM, LPARAM) -> LRESULT {
    of.closing = true;
    return 0;
  });
  TestWindow second;
  of.list.Register(first.handle(), qxtest::kNotice);
  of.list.Register(second.handle(), qxtest::kNotice);
  of.list.Send(1, 0);
  EXPECT_EQ(first.seen().size(), 1u);
  EXPECT_EQ(second.seen(), Seen());
}

TEST(NotifyList, GoesOnWhenAWindowsQueueIsFull) {
  List of;
  TestWindow window;
  TestWindow second;
  of.list.Register(window.handle(), qxtest::kNotice);
  of.list.Register(second.handle(), qxtest::kNotice);
  const qxtest::Failing fault("PostMessageW", ERROR_NOT_ENOUGH_QUOTA);
  of.list.Post(1, 0);
  EXPECT_EQ(second.WaitForSeen(1).size(), 1u);
  EXPECT_EQ(window.seen(), Seen());
  EXPECT_EQ(of.list.Unregister(window.handle()), QCM_OK) << "it stays on the list";
}

TEST(NotifyList, LetsTheWindowsOwnThreadRegisterWhileItIsSentANotice) {
  Watchdog watchdog;
  List of;
  TestWindow window;
  TestWindow another;
  of.list.Register(window.handle(), qxtest::kNotice);
  auto registering = window.Start([&] {
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(of.list.Register(another.handle(), qxtest::kNotice), QCM_OK);
      EXPECT_EQ(of.list.Unregister(another.handle()), QCM_OK);
    }
  });
  while (registering.wait_for(std::chrono::seconds(0)) != std::future_status::ready) of.list.Send(1, 0);
}

}  // namespace
