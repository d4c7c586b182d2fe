// The procedure that the library puts before the event window's own.
#include "api/event_window.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "support/test_application.h"

namespace {

using qxtest::Failing;
using qxtest::kEventMessage;
using qxtest::SeenMessage;
using qxtest::TestWindow;
using Seen = std::vector<SeenMessage>;

std::atomic<DWORD> events{0};
std::atomic<LPARAM> details{0};

void Count(DWORD mask, LPARAM detail) {
  events += mask;
  details += detail;
}

/// An application's window that is named as the event window, and the library's procedure put back at the end.
struct Application {
  explicit Application(UINT message = kEventMessage) {
    host::instrument::SetEventWindow(window.handle(), message);
    events = 0;
    details = 0;
  }
  ~Application() {
    qxcm::event_window::Remove();
    host::instrument::ResetEventWindow();
  }
  bool Install() { return qxcm::event_window::Install(&Count); }
  LONG_PTR Procedure() const { return host::GetWindowLongW(window.handle(), GWL_WNDPROC); }
  LRESULT Send(UINT message, WPARAM mask, LPARAM detail = 0) {
    return host::SendMessageW(window.handle(), message, mask, detail);
  }

  TestWindow window{[](UINT, WPARAM, LPARAM) -> LRESULT { return 77; }};
};

TEST(EventWindow, HandsEventsOverAndThenCallsTheWindowsOwnProcedure) {
  Application application;
  ASSERT_TRUE(application.Install());
  EXPECT_EQ(application.Send(kEventMessage, 0x41, 5), 77);
  EXPECT_EQ(events, 0x41u);
  EXPECT_EQ(details, 5);
  EXPECT_EQ(application.window.seen(), (Seen{{kEventMessage, 0x41, 5, true}}));
}

TEST(EventWindow, LeavesOtherMessagesToTheWindow) {
  Application application;
  ASSERT_TRUE(application.Install());
  EXPECT_EQ(application.Send(kEventMessage + 1, 1), 77);
  EXPECT_EQ(application.Send(WM_NULL, 1), 77);
  EXPECT_EQ(events, 0u);
}

TEST(EventWindow, TakesPostedEventsToo) {
  Application application;
  ASSERT_TRUE(application.Install());
  host::PostMessageW(application.window.handle(), kEventMessage, 3, 0);
  application.window.WaitForSeen(1);
  EXPECT_EQ(events, 3u);
}

TEST(EventWindow, PutsTheWindowsProcedureBack) {
  Application application;
  const LONG_PTR before = application.Procedure();
  ASSERT_TRUE(application.Install());
  EXPECT_NE(application.Procedure(), before);
  qxcm::event_window::Remove();
  EXPECT_EQ(application.Procedure(), before);
  EXPECT_EQ(application.Send(kEventMessage, 1), 77);
  EXPECT_EQ(events, 0u);
}

TEST(EventWindow, IsTakenOnceUntilItIsPutBack) {
  Application application;
  ASSERT_TRUE(application.Install());
  const LONG_PTR installed = application.Procedure();
  EXPECT_TRUE(application.Install());
  EXPECT_EQ(application.Procedure(), installed);
  application.Send(kEventMessage, 1);
  EXPECT_EQ(events, 1u);
  EXPECT_EQ(application.window.seen().size(), 1u);
}

TEST(EventWindow, IsAskedForAnewAfterItWasPutBack) {
  Application application;
  ASSERT_TRUE(application.Install());
  qxcm::event_window::Remove();
  TestWindow other;
  host::instrument::SetEventWindow(other.handle(), 0x600);
  ASSERT_TRUE(application.Install());
  host::SendMessageW(other.handle(), 0x600, 4, 0);
  application.Send(kEventMessage, 1);
  EXPECT_EQ(events, 4u);
  qxcm::event_window::Remove();
}

TEST(EventWindow, IsRefusedWhenThereIsNone) {
  Application application;
  host::instrument::SetEventWindow(nullptr, kEventMessage);
  EXPECT_FALSE(application.Install());
}

TEST(EventWindow, IsRefusedWhenItHasGone) {
  Application application;
  application.window.Destroy();
  EXPECT_FALSE(application.Install());
}

TEST(EventWindow, IsRefusedWithAMessageNumberBelow1024) {
  for (const UINT message : {0u, 1u, 1023u}) {
    Application application(message);
    const LONG_PTR before = application.Procedure();
    EXPECT_FALSE(application.Install()) << message;
    EXPECT_EQ(application.Procedure(), before);
  }
  EXPECT_TRUE(Application(1024).Install());
}

TEST(EventWindow, IsRefusedWhenItsProcedureCannotBeReplaced) {
  Application application;
  const LONG_PTR before = application.Procedure();
  {
    const Failing fault("SetWindowLongW", ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(application.Install());
  }
  EXPECT_EQ(application.Procedure(), before);
  EXPECT_TRUE(application.Install());
}

TEST(EventWindow, StaysWithTheApplicationWhenItsProcedureCannotBeRead) {
  Application application;
  {
    const Failing fault("GetWindowLongW", ERROR_INVALID_WINDOW_HANDLE);
    application.Install();
  }
  EXPECT_EQ(application.Send(WM_USER + 1, 1), 77) << "the application's messages still reach it";
  qxcm::event_window::Remove();
  EXPECT_EQ(application.Send(WM_USER + 1, 1), 77);
}

TEST(EventWindow, WorksAgainWhenItsProcedureCouldNotBePutBackOnce) {
  Application application;
  ASSERT_TRUE(application.Install());
  {
    const Failing fault("SetWindowLongW", ERROR_INVALID_WINDOW_HANDLE);
    qxcm::event_window::Remove();
  }
  EXPECT_EQ(application.Send(kEventMessage, 1), 77);
  EXPECT_EQ(events, 0u);
  ASSERT_TRUE(application.Install());
  EXPECT_EQ(application.Send(kEventMessage, 1), 77) << "the library's procedure does not call itself";
  EXPECT_EQ(events, 1u);
}

TEST(EventWindow, MayGoWhileTheLibraryWatchesIt) {
  Application application;
  ASSERT_TRUE(application.Install());
  application.window.Destroy();
  qxcm::event_window::Remove();
  EXPECT_FALSE(application.Install());
}

}  // namespace
