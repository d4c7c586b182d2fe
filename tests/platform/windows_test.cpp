// Windows: their classes, their life, and what is set in them.
#include <gtest/gtest.h>

#include <vector>

#include "test_window.h"

namespace platform_test {
namespace {

constexpr int kUserData = -21;
constexpr DWORD kNoSuchClass = 1407;
constexpr DWORD kClassExists = 1410;
constexpr DWORD kInvalidIndex = 1413;

LRESULT CALLBACK AnswersEleven(HWND, UINT message, WPARAM, LPARAM) { return message == WM_APP ? 11 : 0; }

TEST(Window, IsThereUntilItIsDestroyed) {
  HWND window = nullptr;
  {
    const TestWindow made;
    window = made.handle();
    EXPECT_NE(IsWindow(window), FALSE);
  }
  EXPECT_EQ(IsWindow(window), FALSE);
  EXPECT_EQ(IsWindow(nullptr), FALSE);
}

TEST(Window, DestroyingItSendsTheDestroyMessage) {
  const TestWindow window;
  EXPECT_NE(DestroyWindow(window.handle()), FALSE);
  EXPECT_EQ(window.messages(), std::vector<UINT>{WM_DESTROY});
  EXPECT_EQ(DestroyWindow(window.handle()), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST(Window, OnlyItsOwnThreadDestroysIt) {
  const TestWindow window;
  TestThread other([&] { return DestroyWindow(window.handle()) == FALSE ? GetLastError() : 0; });
  EXPECT_EQ(other.Join(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_NE(IsWindow(window.handle()), FALSE);
}

TEST(Window, EndsWithItsThread) {
  HWND left = nullptr;
  TestThread([&]() -> DWORD {
    const TestWindow registers_the_class;
    left = CreateWindowExW(0, TEXT("QX-TEST.window"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    return IsWindow(left) != FALSE ? 1 : 0;
  }).Join();
  ASSERT_NE(left, nullptr);
  EXPECT_EQ(IsWindow(left), FALSE);
}

TEST(Window, HandleOfADestroyedOneIsNotUsedAgainSoon) {
  HWND destroyed = nullptr;
  {
    const TestWindow window;
    destroyed = window.handle();
  }
  for (int i = 0; i < 20; ++i) EXPECT_NE(TestWindow().handle(), destroyed);
}

TEST(Window, TellsItsThreadAndProcess) {
  const TestWindow window;
  DWORD process = 0;
  EXPECT_EQ(GetWindowThreadProcessId(window.handle(), &process), GetCurrentThreadId());
  EXPECT_EQ(process, GetCurrentProcessId());
  TestThread other([&] { return GetWindowThreadProcessId(window.handle(), nullptr); });
  EXPECT_EQ(other.Join(), GetCurrentThreadId());
  EXPECT_EQ(GetWindowThreadProcessId(nullptr, nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

TEST(WindowClass, MustBeRegistered) {
  HWND window =
      CreateWindowExW(0, TEXT("QX-TEST.unknown"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  EXPECT_EQ(window, nullptr);
  EXPECT_EQ(GetLastError(), kNoSuchClass);
}

TEST(WindowClass, IsRegisteredOnceWhateverTheCase) {
  WNDCLASSW window_class = {};
  window_class.lpfnWndProc = AnswersEleven;
  window_class.lpszClassName = TEXT("QX-TEST.once");
  EXPECT_NE(RegisterClassW(&window_class), 0);
  window_class.lpszClassName = TEXT("QX-Test.ONCE");
  EXPECT_EQ(RegisterClassW(&window_class), 0);
  EXPECT_EQ(GetLastError(), kClassExists);
}

WNDPROC previous_procedure = nullptr;
std::vector<UINT> seen_by_subclass;

LRESULT CALLBACK Subclass(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  seen_by_subclass.push_back(message);
  return CallWindowProcW(previous_procedure, window, message, wparam, lparam);
}

TEST(Subclassing, NewProcedureGetsTheMessagesAndPassesThemOn) {
  const TestWindow window([](UINT message, WPARAM, LPARAM) { return message == WM_APP ? 5 : 0; });
  seen_by_subclass.clear();
  const LONG_PTR previous = GetWindowLongW(window.handle(), kWindowProcedure);
  previous_procedure = reinterpret_cast<WNDPROC>(previous);
  EXPECT_EQ(SetWindowLongW(window.handle(), kWindowProcedure, reinterpret_cast<LONG_PTR>(&Subclass)), previous);
  EXPECT_EQ(SendMessageW(window.handle(), WM_APP, 0, 0), 5);
  EXPECT_EQ(seen_by_subclass, std::vector<UINT>{WM_APP});
  EXPECT_EQ(SetWindowLongW(window.handle(), kWindowProcedure, previous), reinterpret_cast<LONG_PTR>(&Subclass));
  EXPECT_EQ(SendMessageW(window.handle(), WM_APP, 0, 0), 5);
  EXPECT_EQ(seen_by_subclass, std::vector<UINT>{WM_APP});
}

TEST(Subclassing, AnyThreadOfTheProcessMaySetTheProcedure) {
  const TestWindow window;
  const LONG_PTR procedure = reinterpret_cast<LONG_PTR>(&AnswersEleven);
  LONG_PTR previous = 0;
  TestThread([&]() -> DWORD {
    previous = SetWindowLongW(window.handle(), kWindowProcedure, procedure);
    return 0;
  }).Join();
  EXPECT_EQ(SendMessageW(window.handle(), WM_APP, 0, 0), 11);
  EXPECT_EQ(SetWindowLongW(window.handle(), kWindowProcedure, previous), procedure);
}

TEST(WindowLong, KeepsUserData) {
  const TestWindow window;
  const LONG_PTR own = GetWindowLongW(window.handle(), kUserData);
  EXPECT_EQ(SetWindowLongW(window.handle(), kUserData, 0), own);
  EXPECT_EQ(SetWindowLongW(window.handle(), kUserData, own), 0);
}

TEST(WindowLong, RefusesOtherIndexesAndNoWindow) {
  const TestWindow window;
  EXPECT_EQ(SetWindowLongW(window.handle(), -99, 1), 0);
  EXPECT_EQ(GetLastError(), kInvalidIndex);
  EXPECT_EQ(SetWindowLongW(nullptr, kUserData, 1), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

}  // namespace
}  // namespace platform_test
