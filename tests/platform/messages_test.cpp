// Messages: posted in order, sent and answered, waited for.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

#include "test_window.h"

namespace platform_test {
namespace {

constexpr UINT kFirst = WM_APP + 1;
constexpr UINT kSecond = WM_APP + 2;
constexpr UINT kThird = WM_APP + 3;

DWORD MsgWait(const std::vector<HANDLE>& objects, DWORD mask, DWORD milliseconds = kLong, DWORD flags = 0) {
  return MsgWaitForMultipleObjectsEx(static_cast<DWORD>(objects.size()), objects.data(), milliseconds, mask, flags);
}

TEST(PostedMessages, AreHandledInTheirOrder) {
  const TestWindow window;
  for (const UINT message : {kSecond, kFirst, kThird}) EXPECT_NE(PostMessageW(window.handle(), message, 0, 0), FALSE);
  EXPECT_TRUE(window.messages().empty());
  HandleMessages();
  EXPECT_EQ(window.messages(), (std::vector<UINT>{kSecond, kFirst, kThird}));
}

TEST(PostedMessages, CarryTheirParameters) {
  const TestWindow window;
  PostMessageW(window.handle(), kFirst, 256, -5);
  MSG message = {};
  ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
  EXPECT_EQ(message.hwnd, window.handle());
  EXPECT_EQ(message.message, kFirst);
  EXPECT_EQ(message.wParam, 256u);
  EXPECT_EQ(message.lParam, -5);
}

TEST(PostedMessages, PeekingLeavesThemUnlessToldToRemove) {
  const TestWindow window;
  MSG message = {};
  EXPECT_EQ(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), FALSE);
  PostMessageW(window.handle(), kFirst, 0, 0);
  EXPECT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE), FALSE);
  EXPECT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), FALSE);
  EXPECT_EQ(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE), FALSE);
}

TEST(PostedMessages, CanBeLookedForByWindowAndNumber) {
  const TestWindow window, other;
  PostMessageW(window.handle(), kFirst, 0, 0);
  PostMessageW(window.handle(), kThird, 0, 0);
  PostMessageW(other.handle(), kThird, 0, 0);
  MSG message = {};
  EXPECT_NE(PeekMessageW(&message, other.handle(), 0, 0, PM_REMOVE), FALSE);
  EXPECT_EQ(message.hwnd, other.handle());
  EXPECT_NE(PeekMessageW(&message, nullptr, kSecond, kThird, PM_REMOVE), FALSE);
  EXPECT_EQ(message.message, kThird);
  EXPECT_EQ(PeekMessageW(&message, nullptr, kSecond, kThird, PM_REMOVE), FALSE);
  HandleMessages();
  EXPECT_EQ(window.messages(), std::vector<UINT>{kFirst});
}

TEST(PostedMessages, GoWithTheirWindow) {
  auto window = std::make_unique<TestWindow>();
  const HWND handle = window->handle();
  PostMessageW(handle, kFirst, 0, 0);
  window.reset();
  MSG message = {};
  EXPECT_EQ(PeekMessageW(&message, nullptr, kFirst, kFirst, PM_REMOVE), FALSE);
  EXPECT_EQ(PostMessageW(handle, kFirst, 0, 0), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST(PostedMessages, QuitMessageComesAfterThem) {
  const TestWindow window;
  PostQuitMessage(3);
  PostMessageW(window.handle(), kFirst, 0, 0);
  MSG message = {};
  EXPECT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
  EXPECT_EQ(message.message, kFirst);
  EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
  EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
  EXPECT_EQ(message.wParam, 3u);
}

TEST(PostedMessages, LookingForThoseOfNoWindowFails) {
  HWND gone = TestWindow().handle();
  MSG message = {};
  EXPECT_EQ(GetMessageW(&message, gone, 0, 0), -1);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST(SentMessages, OfTheSameThreadAreCallsOfTheProcedure) {
  const TestWindow window([](UINT, WPARAM wparam, LPARAM lparam) { return static_cast<LRESULT>(wparam) + lparam; });
  EXPECT_EQ(SendMessageW(window.handle(), kFirst, 2, 40), 42);
}

TEST(SentMessages, AreHandledOnTheWindowsThreadBeforeTheSenderGoesOn) {
  std::atomic<DWORD> handled_on{0};
  WindowThread receiver([&](UINT, WPARAM wparam, LPARAM) {
    handled_on = GetCurrentThreadId();
    return static_cast<LRESULT>(wparam * 2);
  });
  EXPECT_EQ(SendMessageW(receiver.window(), kFirst, 21, 0), 42);
  EXPECT_EQ(handled_on, receiver.id());
}

TEST(SentMessages, ToNoWindowFail) {
  HWND gone = TestWindow().handle();
  EXPECT_EQ(SendMessageW(gone, kFirst, 0, 0), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST(SentMessages, ComeBeforePostedOnes) {
  const TestWindow window;
  PostMessageW(window.handle(), kFirst, 0, 0);
  TestThread sender([&] { return SendMessageW(window.handle(), kSecond, 0, 0), 0; });
  EXPECT_EQ(MsgWait({}, QS_SENDMESSAGE), WAIT_OBJECT_0);
  HandleMessages();
  EXPECT_EQ(window.messages(), (std::vector<UINT>{kSecond, kFirst}));
}

TEST(SentMessages, CanBeLetThroughAlone) {
  const TestWindow window;
  PostMessageW(window.handle(), kFirst, 0, 0);
  TestThread sender([&] { return SendMessageW(window.handle(), kSecond, 0, 0), 0; });
  EXPECT_EQ(MsgWait({}, QS_SENDMESSAGE), WAIT_OBJECT_0);
  MSG message = {};
  EXPECT_EQ(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE), FALSE);
  EXPECT_EQ(window.messages(), std::vector<UINT>{kSecond});
  HandleMessages();
}

TEST(SentMessages, TellWhereTheyComeFrom) {
  EXPECT_EQ(InSendMessage(), FALSE);
  const TestWindow own([](UINT, WPARAM, LPARAM) { return LRESULT{InSendMessage()}; });
  EXPECT_EQ(SendMessageW(own.handle(), kFirst, 0, 0), FALSE);
  WindowThread receiver([](UINT, WPARAM, LPARAM) { return LRESULT{InSendMessage()}; });
  EXPECT_NE(SendMessageW(receiver.window(), kFirst, 0, 0), FALSE);
}

TEST(SentMessages, SenderIsReleasedWhenTheWindowIsDestroyed) {
  auto window = std::make_unique<TestWindow>();
  const HWND handle = window->handle();
  TestThread sender([=] { return static_cast<DWORD>(SendMessageW(handle, kFirst, 0, 0)); });
  EXPECT_EQ(MsgWait({}, QS_SENDMESSAGE), WAIT_OBJECT_0);
  EXPECT_EQ(Wait(sender.handle(), 0), WAIT_TIMEOUT);
  window.reset();
  EXPECT_EQ(sender.Join(), 0u);
}

TEST(SentMessages, SenderIsReleasedWhenTheWindowsThreadEnds) {
  const Handle ready = ManualEvent(), end = ManualEvent();
  HWND window = nullptr;
  TestThread owner([&] {
    const TestWindow registers_the_class;
    window =
        CreateWindowExW(0, TEXT("QX-TEST.window"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    Set(ready);
    return Wait(end);
  });
  Wait(ready);
  TestThread sender([&] { return static_cast<DWORD>(SendMessageW(window, kFirst, 0, 0)); });
  EXPECT_EQ(Wait(sender.handle(), kShort), WAIT_TIMEOUT);
  Set(end);
  EXPECT_EQ(sender.Join(), 0u);
}

TEST(SentMessages, SenderThatWaitsHandlesWhatIsSentToIt) {
  const TestWindow own([](UINT, WPARAM wparam, LPARAM) { return static_cast<LRESULT>(wparam + 1); });
  WindowThread other([&](UINT, WPARAM wparam, LPARAM) { return SendMessageW(own.handle(), kSecond, wparam + 1, 0); });
  EXPECT_EQ(SendMessageW(other.window(), kFirst, 40, 0), 42);
}

TEST(SentMessages, TwoThreadsCanSendToEachOtherForLong) {
  HWND first_window = nullptr, second_window = nullptr;
  const auto bounce = [](HWND to, WPARAM left) { return left == 0 ? 7 : SendMessageW(to, kFirst, left - 1, 0); };
  WindowThread first([&](UINT, WPARAM left, LPARAM) { return bounce(second_window, left); });
  WindowThread second([&](UINT, WPARAM left, LPARAM) { return bounce(first_window, left); });
  first_window = first.window();
  second_window = second.window();
  EXPECT_EQ(SendMessageW(first_window, kFirst, 20, 0), 7);
}

TEST(MessageWait, IsWokenByASentMessage) {
  const TestWindow window;
  const Handle event = ManualEvent();
  TestThread sender([&] { return SendMessageW(window.handle(), kFirst, 0, 0), 0; });
  EXPECT_EQ(MsgWait({event}, QS_SENDMESSAGE), WAIT_OBJECT_0 + 1);
  HandleMessages();
  EXPECT_EQ(window.messages(), std::vector<UINT>{kFirst});
}

TEST(MessageWait, TellsAnObjectBeforeInput) {
  const TestWindow window;
  const Handle event = ManualEvent();
  PostMessageW(window.handle(), kFirst, 0, 0);
  Set(event);
  EXPECT_EQ(MsgWait({event}, QS_ALLINPUT), WAIT_OBJECT_0);
  HandleMessages();
}

TEST(MessageWait, IsNotWokenByInputItDidNotAskFor) {
  const TestWindow window;
  const Handle event = ManualEvent();
  PostMessageW(window.handle(), kFirst, 0, 0);
  EXPECT_EQ(MsgWait({event}, QS_SENDMESSAGE, kShort), WAIT_TIMEOUT);
  EXPECT_EQ(MsgWait({event}, QS_POSTMESSAGE), WAIT_OBJECT_0 + 1);
  HandleMessages();
}

TEST(MessageWait, MessageThatWasLookedAtWakesOnlyWhenAskedFor) {
  const TestWindow window;
  PostMessageW(window.handle(), kFirst, 0, 0);
  MSG message = {};
  EXPECT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE), FALSE);
  EXPECT_EQ(MsgWait({}, QS_ALLINPUT, kShort), WAIT_TIMEOUT);
  EXPECT_EQ(MsgWait({}, QS_ALLINPUT, kLong, MWMO_INPUTAVAILABLE), WAIT_OBJECT_0);
  HandleMessages();
}

TEST(MessageWait, TakesAMutex) {
  const Handle mutex = FreeMutex();
  EXPECT_EQ(MsgWait({mutex}, QS_SENDMESSAGE), WAIT_OBJECT_0);
  EXPECT_NE(ReleaseMutex(mutex), FALSE);
}

TEST(MessageWait, LeavesRoomForInputAmongSixtyFour) {
  const Handle event = ManualEvent();
  const std::vector<HANDLE> objects(64, event);
  EXPECT_EQ(MsgWait(objects, QS_ALLINPUT, 0), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
}  // namespace platform_test
