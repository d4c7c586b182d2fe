// Closing while the service is at work: keys, events, exports and sent notices in flight never keep a close from
// ending, and a close never keeps them.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "instrument/focus_side.h"
#include "instrument/keys.h"
#include "support/memory_link.h"
#include "support/test_application.h"
#include "threads/open_service.h"

namespace {

using qxcm::Guard;
using qxtest::CommandFrame;
using qxtest::kNotice;
using qxtest::kPatience;
using qxtest::NoticeOnEveryCommand;
using qxtest::OpenService;
using qxtest::Signal;
using qxtest::TestWindow;
using qxtest::WaitUntil;
using qxtest::Watchdog;
using qxtest::World;
using std::chrono::milliseconds;

std::future<QCM_INT32> CloseElsewhere(const OpenService& service) {
  return std::async(std::launch::async, QCMCloseComm, service.handle());
}

// ---- What is in flight never blocks a close

TEST(Closing, DoesNotWaitForAnExportInFlight) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  const auto in_flight = service.manager();  // what every export holds while it works
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  EXPECT_EQ(in_flight->Suspend(), QCM_NO_SERVICE);
}

TEST(Closing, DoesNotWaitForAKeyInFlight) {
  Watchdog watchdog;
  World world;
  host::AttachPty("COMBT:");
  const OpenService stays(u"COMBT:");
  const OpenService service;
  const auto manager = stays.manager();
  host::instrument::KeyProcess keys;
  Guard hold(manager->lock());  // the key thread comes to a halt here
  keys.Announce({1}, kPatience);
  EXPECT_TRUE(keys.WaitUntilTaken(kPatience));
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
}

TEST(Closing, OfTheLastServiceWaitsForTheKeyInFlight) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  host::instrument::KeyProcess keys;
  for (std::uint32_t code = 0; code < 20; ++code) keys.Announce({code}, kPatience);
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(Closing, DoesNotWaitForEventsInFlight) {
  Watchdog watchdog;
  World world;
  for (int round = 0; round < 10; ++round) {
    const OpenService service;
    const auto delivering = std::async(std::launch::async, [] {
      for (int i = 0; i < 100; ++i) host::instrument::DeliverEvents(0xFFFFFFFF);
    });
    EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  }
}

TEST(Closing, FromTheEventWindowsThreadWhileEventsAreSentToItEnds) {
  Watchdog watchdog;
  World world;
  for (int round = 0; round < 10; ++round) {
    const OpenService service;
    auto closing = world.event_window().Start([&] { EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK); });
    while (closing.wait_for(milliseconds(0)) != std::future_status::ready) host::instrument::DeliverEvents(1);
  }
}

TEST(Closing, EndsWhileExportsOfOtherThreadsUseTheService) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  TestWindow window;
  std::atomic<int> rounds{0};
  const auto use = [&] {
    QCM_WCHAR name[16];
    QCM_MSR_PARAMS record;
    while (QCMGetPortName(service.handle(), name, sizeof name) == QCM_OK) {
      QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
      QCMGetLastMsrParams(service.handle(), &record);
      QCMSetAngleRoundParams(service.handle(), 1.0);
      QCMUnregisterNotifyWindow(service.handle(), window.handle());
      ++rounds;
    }
  };
  std::thread one(use);
  std::thread two(use);
  EXPECT_TRUE(WaitUntil([&] { return rounds > 100; }));
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  one.join();
  two.join();
}

TEST(Closing, OfOneServiceByManyThreadsSucceedsOnce) {
  Watchdog watchdog;
  World world;
  for (int round = 0; round < 20; ++round) {
    const OpenService service;
    std::atomic<int> closed{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] { closed += QCMCloseComm(service.handle()) == QCM_OK ? 1 : 0; });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(closed, 1);
  }
}

TEST(Closing, LetsOtherServicesAnswerInTimeWhileItWaits) {
  Watchdog watchdog;
  World world;
  qxtest::Controller bluetooth(host::AttachPty("COMBT:"));
  const OpenService other(u"COMBT:");
  const OpenService service;
  service.manager()->SendAsynchronous(std::string(100000, 'x'));
  EXPECT_NE(world.controller().Receive(1), "");  // and no more: the writer thread is stuck
  auto closing = CloseElsewhere(service);
  ASSERT_TRUE(service.IsBeingClosed());
  const auto start = std::chrono::steady_clock::now();
  QCM_WCHAR name[16];
  EXPECT_EQ(bluetooth.Exchange("GT_OMD"), qxtest::ReplyFrame("OMD") + std::string(qxtest::kAck));
  EXPECT_EQ(QCMGetPortName(other.handle(), name, sizeof name), QCM_OK);
  EXPECT_EQ(QCMSuspendComm(other.handle()), QCM_OK);
  EXPECT_EQ(QCMGetPortName(service.handle(), name, sizeof name), QCM_NO_SERVICE);
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_NO_SERVICE);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  world.controller().ReceiveUntilQuiet(milliseconds(100));
  EXPECT_EQ(closing.get(), QCM_OK);
}

/// What a window has held up of a closed service goes with the next open or close.
void ExpectTheNextOpenAndCloseTidyUp() {
  EXPECT_TRUE(WaitUntil([] { return host::LibraryThreads() == 0; }));
  EXPECT_EQ(QCMCloseComm(QCMOpenComm(u"COM5:")), QCM_OK);
}

TEST(Closing, LetsSentMessagesThroughInTimeWhileItWaitsForTheWriterThread) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  service.manager()->SendAsynchronous(std::string(100000, 'x'));
  EXPECT_NE(world.controller().Receive(1), "");  // and no more: the writer thread is stuck for seconds
  TestWindow window([](UINT, WPARAM, LPARAM) -> LRESULT { return 5; });
  auto closing = window.Start([&] { EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK); });
  ASSERT_TRUE(service.IsBeingClosed());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(host::SendMessageW(window.handle(), kNotice, 0, 0), 5);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
  world.controller().ReceiveUntilQuiet(milliseconds(100));
  closing.get();
}

// ---- Notices sent to a window while its service is closed

TEST(Closing, FromTheWindowsThreadWhileANoticeIsSentToItEnds) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  for (int round = 0; round < 20; ++round) {
    const OpenService service;
    TestWindow window;
    QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
    notices.To(service);
    window.Run([&] {
      world.controller().Send(CommandFrame("GT_OMD"));  // the notice finds this thread busy
      if (round % 2 == 0) std::this_thread::sleep_for(milliseconds(5));
      EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
    });
  }
}

TEST(Closing, FromInsideTheHandlerOfANoticeEndsAtOnce) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  std::atomic<QCM_INT32> result{99};
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    result = QCMCloseComm(service.handle());
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  world.controller().Send(CommandFrame("GT_OMD"));
  EXPECT_TRUE(WaitUntil([&] { return result == QCM_OK; }));
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_NO_SERVICE);
  EXPECT_EQ(QCMCloseComm(QCMOpenComm(u"COM5:")), QCM_OK) << "the port is free";
  ExpectTheNextOpenAndCloseTidyUp();
}

TEST(Closing, FromInsideAHandlerFreesThePortBeforeTheHandlerHasReturned) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  Signal done;
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
    const QCM_HANDLE next = QCMOpenComm(u"COM5:");
    EXPECT_NE(next, 0u);
    EXPECT_EQ(QCMCloseComm(next), QCM_OK);
    done.Give();
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  world.controller().Send(CommandFrame("GT_OMD"));
  done.Wait();
  ExpectTheNextOpenAndCloseTidyUp();
}

TEST(Closing, FromInsideAHandlerLeavesNoFocusJobToWaitForSoOthersOpenInTime) {
  Watchdog watchdog;
  World world;
  const auto focus = host::instrument::FocusSide::Instance();
  focus->SetAnswer(host::instrument::FocusAnswer::kSilence);  // a job lasts as long as it may
  NoticeOnEveryCommand notices;
  const OpenService service;
  EXPECT_EQ(world.controller().Exchange("ST_FOC,AFO=1"), qxtest::kAck);
  Signal closed;
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
    closed.Give();
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  const auto start = std::chrono::steady_clock::now();
  world.controller().Send(CommandFrame("GT_OMD"));
  closed.Wait();
  EXPECT_TRUE(WaitUntil([] { return host::LibraryThreads() == 1; })) << "the focus worker's";
  EXPECT_EQ(QCMCloseComm(QCMOpenComm(u"COM5:")), QCM_OK);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_TRUE(WaitUntil([] { return host::LibraryThreads() == 0; }));
  EXPECT_EQ(QCMCloseComm(QCMOpenComm(u"COM5:")), QCM_OK) << "which lets go of the closed service";
  focus->Reset();
}

/// A window that tells when it handles a notice and then waits for a word before it does its work.
struct SlowWindow {
  explicit SlowWindow(std::function<void()> work)
      : window([this, work = std::move(work)](UINT, WPARAM, LPARAM) -> LRESULT {
          handling.Give();
          go_on.Wait();
          work();
          return 0;
        }) {}

  Signal handling;
  Signal go_on;
  TestWindow window;
};

/// A command of `service` has sent a notice to a slow window, and another thread is closing the service.
struct ClosedWhileHandled {
  explicit ClosedWhileHandled(
      std::function<void()> work, const std::function<void()>& prepare = [] {})
      : slow(std::move(work)) {
    prepare();
    QCMRegisterNotifyWindow(service.handle(), slow.window.handle(), kNotice);
    notices.To(service);
    world.controller().Send(CommandFrame("GT_OMD"));
    slow.handling.Wait();
    closing = CloseElsewhere(service);
    EXPECT_TRUE(service.IsBeingClosed());
  }

  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  OpenService service;
  SlowWindow slow;
  std::future<QCM_INT32> closing;
};

TEST(Closing, FromAnotherThreadWaitsUntilTheNoticeHasBeenHandled) {
  std::atomic<bool> handled{false};
  ClosedWhileHandled test([&] { handled = true; });
  EXPECT_EQ(test.closing.wait_for(milliseconds(30)), std::future_status::timeout);
  test.slow.go_on.Give();
  EXPECT_EQ(test.closing.get(), QCM_OK);
  EXPECT_TRUE(handled);
}

TEST(Closing, FromAnotherThreadEndsThoughTheHandlerClosesTheServiceToo) {
  QCM_INT32 result = 99;
  ClosedWhileHandled* running = nullptr;
  ClosedWhileHandled test([&] { result = QCMCloseComm(running->service.handle()); });
  running = &test;
  test.slow.go_on.Give();
  EXPECT_EQ(test.closing.get(), QCM_OK);
  EXPECT_EQ(result, QCM_NO_SERVICE);
}

TEST(Closing, FromAnotherThreadEndsThoughTheHandlerOpensAService) {
  ClosedWhileHandled test([] { QCMCloseComm(QCMOpenComm(u"COM5:")); });
  test.slow.go_on.Give();
  EXPECT_EQ(test.closing.get(), QCM_OK);
}

TEST(Closing, FromAnotherThreadEndsThoughTheHandlerClosesAnotherService) {
  QCM_HANDLE other = 0;
  ClosedWhileHandled test([&] { EXPECT_EQ(QCMCloseComm(other), QCM_OK); },
                          [&] {
                            host::AttachPty("COMBT:");
                            other = QCMOpenComm(u"COMBT:");
                            EXPECT_NE(other, 0u);
                          });
  test.slow.go_on.Give();
  EXPECT_EQ(test.closing.get(), QCM_OK);
}

TEST(Closing, ByManyThreadsAndFromTheHandlerAtOnceEnds) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  for (int round = 0; round < 30; ++round) {
    const OpenService service;
    TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
      QCMCloseComm(service.handle());
      return 0;
    });
    QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
    notices.To(service);
    world.controller().Send(CommandFrame("GT_OMD"));
    auto one = CloseElsewhere(service);
    QCMCloseComm(service.handle());
    one.get();
  }
  ExpectTheNextOpenAndCloseTidyUp();
}

TEST(Closing, EndsThoughAWindowOfAnotherThreadDoesItForTheHandler) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  QCM_INT32 result = 99;
  TestWindow helper([&](UINT, WPARAM, LPARAM) -> LRESULT {
    result = QCMCloseComm(service.handle());
    return 0;
  });
  Signal done;
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    host::SendMessageW(helper.handle(), kNotice, 0, 0);
    done.Give();
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  world.controller().Send(CommandFrame("GT_OMD"));
  done.Wait();
  EXPECT_EQ(result, QCM_OK);
  ExpectTheNextOpenAndCloseTidyUp();
}

}  // namespace
