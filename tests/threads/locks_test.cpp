// The rules that keep the library free of deadlock while its services stay open.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "instrument/keys.h"
#include "support/memory_link.h"
#include "support/test_application.h"
#include "threads/open_service.h"

namespace {

using qxcm::Guard;
using qxtest::CommandFrame;
using qxtest::kNotice;
using qxtest::NoticeOnEveryCommand;
using qxtest::OpenService;
using qxtest::Signal;
using qxtest::TestWindow;
using qxtest::Watchdog;
using qxtest::World;
using std::chrono::milliseconds;

// ---- The reader thread never takes the manager lock

TEST(ReaderThread, AnswersAnEnquiryWhileTheManagerLockIsHeld) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  const auto manager = service.manager();
  Guard hold(manager->lock());
  world.controller().Send(
      "\x05"
      "C<X>!\r");
  EXPECT_EQ(world.controller().Receive(2), "\x06\x15");
}

TEST(Suspending, EndsUnderAStormOfEnquiriesAndBadFrames) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  std::atomic<bool> stop{false};
  std::string storm;
  for (int i = 0; i < 100; ++i)
    storm +=
        "\x05"
        "C<GT_OMD>!\r" +
        CommandFrame("GT_OMD");
  std::thread sender([&] {
    while (!stop) world.controller().TrySend(storm);
  });
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(QCMSuspendComm(service.handle()), QCM_OK);
    EXPECT_EQ(QCMResumeComm(service.handle()), QCM_OK);
  }
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  stop = true;
  sender.join();
}

TEST(Suspending, EndsWhenTheControllerReadsNothing) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  for (int i = 0; i < 2000; ++i) world.controller().TrySend("\x05\x05\x05\x05");
  EXPECT_EQ(QCMSuspendComm(service.handle()), QCM_OK);
  EXPECT_EQ(QCMResumeComm(service.handle()), QCM_OK);
}

// ---- The notify lock is held while a notice is sent

TEST(Registering, FromTheWindowsThreadEndsWhileANoticeIsSentToIt) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  TestWindow window;
  TestWindow another;
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  window.Run([&] {
    for (int i = 0; i < 50; ++i) {
      world.controller().Send(CommandFrame("ST_OMD"));
      EXPECT_EQ(QCMRegisterNotifyWindow(service.handle(), another.handle(), kNotice), QCM_OK);
      EXPECT_EQ(QCMUnregisterNotifyWindow(service.handle(), another.handle()), QCM_OK);
    }
  });
  EXPECT_EQ(world.controller().ReceiveAcks(50), std::string(50, '\x06'));
}

TEST(Registering, WaitsForASlowNoticeAndTheSlowWindowIsNotDisturbed) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  Signal handling;
  Signal go_on;
  std::atomic<bool> handled{false};
  TestWindow slow([&](UINT, WPARAM, LPARAM) -> LRESULT {
    handling.Give();
    go_on.Wait();
    handled = true;
    return 0;
  });
  TestWindow other;
  QCMRegisterNotifyWindow(service.handle(), slow.handle(), kNotice);
  notices.To(service);
  world.controller().Send(CommandFrame("ST_OMD"));
  handling.Wait();
  auto registering = other.Start([&] {
    EXPECT_EQ(QCMRegisterNotifyWindow(service.handle(), other.handle(), kNotice), QCM_OK);
    EXPECT_TRUE(handled);
  });
  go_on.Give();
  registering.get();
}

/// Everything but registering may be called by a window while it handles a notice.
TEST(Handling, ANoticeMayCallEveryOtherExport) {
  Watchdog watchdog;
  World world;
  host::AttachPty("COMBT:");
  NoticeOnEveryCommand notices;
  const OpenService service;
  Signal done;
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    QCM_WCHAR name[16];
    QCM_MSR_PARAMS record;
    EXPECT_EQ(QCMGetPortName(service.handle(), name, sizeof name), QCM_OK);
    EXPECT_EQ(QCMGetLastMsrParams(service.handle(), &record), QCM_NOTHING_RECORDED);
    EXPECT_EQ(QCMSetAngleRoundParams(service.handle(), 2.0), QCM_OK);
    EXPECT_EQ(QCMT_UpgradeToolsMode(service.handle()), QCM_OK);
    const QCM_HANDLE other = QCMOpenComm(u"COMBT:");
    EXPECT_EQ(QCMRegisterNotifyWindow(other, window.handle(), kNotice), QCM_OK) << "on another service";
    EXPECT_EQ(QCMCloseComm(other), QCM_OK);
    EXPECT_EQ(QCMSuspendComm(service.handle()), QCM_OK);
    EXPECT_EQ(QCMResumeComm(service.handle()), QCM_OK);
    done.Give();
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  world.controller().Send(CommandFrame("ST_OMD"));
  done.Wait();
  EXPECT_EQ(world.controller().ReceiveAcks(1), "\x06");
}

TEST(Suspending, FromTheWindowsThreadDoesNotRunItsHandlersMeanwhile) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  std::atomic<bool> suspending{false};
  std::atomic<int> inside{0};
  TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
    inside += suspending ? 1 : 0;
    return 0;
  });
  QCMRegisterNotifyWindow(service.handle(), window.handle(), kNotice);
  notices.To(service);
  window.Run([&] {
    service.manager()->SendAsynchronous(std::string(60000, 'x'));  // keeps the writer thread busy
    world.controller().Send(CommandFrame("ST_OMD"));
    EXPECT_NE(world.controller().Receive(1), "");
    auto reading = std::async(std::launch::async, [&] { world.controller().ReceiveUntilQuiet(milliseconds(100)); });
    suspending = true;
    EXPECT_EQ(QCMSuspendComm(service.handle()), QCM_OK);
    suspending = false;
    reading.get();
  });
  EXPECT_EQ(inside, 0) << "a handler that resumed the service would find it half suspended";
}

// ---- Opening and closing are one at a time, and a window's thread stays responsive while it waits

TEST(Opening, LetsSentMessagesThroughToTheThreadThatWaitsForAClose) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  service.manager()->SendAsynchronous(std::string(100000, 'x'));
  EXPECT_NE(world.controller().Receive(1), "");  // and no more: the close takes its time
  auto closing = std::async(std::launch::async, QCMCloseComm, service.handle());
  ASSERT_TRUE(service.IsBeingClosed());
  TestWindow window([](UINT, WPARAM, LPARAM) -> LRESULT { return 5; });
  auto opening = window.Start([] { QCMCloseComm(QCMOpenComm(u"COM5:")); });
  EXPECT_EQ(host::SendMessageW(window.handle(), kNotice, 0, 0), 5);
  EXPECT_EQ(closing.wait_for(milliseconds(0)), std::future_status::timeout) << "the close was still waiting";
  world.controller().ReceiveUntilQuiet(milliseconds(100));
  EXPECT_EQ(closing.get(), QCM_OK);
  opening.get();
}

TEST(Opening, FromAWindowThatHandlesAMessageDuringTheLastCloseKeepsTheKeys) {
  Watchdog watchdog;
  World world;
  host::AttachPty("COMBT:");
  for (int round = 0; round < 30; ++round) {
    const OpenService service;
    QCM_HANDLE next = 0;
    bool opened = false;
    TestWindow window([&](UINT, WPARAM, LPARAM) -> LRESULT {
      if (!opened) next = QCMOpenComm(u"COMBT:");
      opened = true;
      return 0;
    });
    auto closing = window.Start([&] { QCMCloseComm(service.handle()); });
    host::SendMessageW(window.handle(), kNotice, 0, 0);
    closing.get();
    EXPECT_EQ(host::LibraryThreads(), 4u) << "a service has its keys";
    QCMCloseComm(next);
  }
}

}  // namespace
