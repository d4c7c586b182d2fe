// The numbers of messages: they tell when each was posted or sent, among the library's calls.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "common/calls/calls.h"
#include "common/windows/windows_messages.h"
#include "test_window.h"

namespace platform_test {
namespace {

constexpr UINT kMessage = WM_APP + 5;

// The numbers of the messages that wait for the calling thread, in their order.
std::vector<std::uint64_t> NumbersTaken() {
  std::vector<std::uint64_t> numbers;
  MSG message = {};
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) numbers.push_back(host::MessageNumber());
  return numbers;
}

TEST(MessageNumbers, ArePostedMessagesOwn) {
  const TestWindow window;
  PostMessageW(window.handle(), kMessage, 1, 0);
  const std::uint64_t between = host::TakeCallNumber();
  PostMessageW(window.handle(), kMessage, 2, 0);
  const std::uint64_t after = host::TakeCallNumber();
  const auto numbers = NumbersTaken();
  ASSERT_EQ(numbers.size(), 2u);
  EXPECT_LT(numbers[0], between);
  EXPECT_GT(numbers[1], between);
  EXPECT_LT(numbers[1], after);
}

TEST(MessageNumbers, OfEqualMessagesGrow) {
  const TestWindow window, other;
  for (int i = 0; i < 3; ++i) {
    PostMessageW(window.handle(), kMessage, 0, 0);
    PostMessageW(other.handle(), kMessage, 0, 0);
  }
  const auto numbers = NumbersTaken();
  ASSERT_EQ(numbers.size(), 6u);
  for (std::size_t i = 1; i < numbers.size(); ++i) EXPECT_EQ(numbers[i], numbers[i - 1] + 1);
}

TEST(MessageNumbers, AreNotTakenByALookAlone) {
  const TestWindow window;
  PostMessageW(window.handle(), kMessage, 0, 0);
  const std::uint64_t after = host::TakeCallNumber();
  PostMessageW(window.handle(), WM_USER, 0, 0);
  MSG message = {};
  EXPECT_NE(PeekMessageW(&message, nullptr, WM_USER, WM_USER, PM_REMOVE), FALSE);
  EXPECT_NE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE), FALSE);
  EXPECT_EQ(host::MessageNumber(), 0u) << "messages below 0x8000 have none";
  const auto numbers = NumbersTaken();
  ASSERT_EQ(numbers.size(), 1u);
  EXPECT_EQ(numbers[0], after - 1);
}

TEST(MessageNumbers, OfMessagesSentByAnotherThreadAreSeenWhileTheyAreHandled) {
  std::uint64_t seen = 0;
  WindowThread receiver([&](UINT, WPARAM, LPARAM) { return seen = host::MessageNumber(), 0; });
  const std::uint64_t before = host::TakeCallNumber();
  SendMessageW(receiver.window(), kMessage, 0, 0);
  EXPECT_EQ(seen, before + 1);
  SendMessageW(receiver.window(), kMessage, 0, 0);
  EXPECT_EQ(seen, before + 2);
}

TEST(MessageNumbers, OfMessagesThatWereNeverTakenAreNobodys) {
  { const TestWindow window; }
  auto destroyed = std::make_unique<TestWindow>();
  PostMessageW(destroyed->handle(), kMessage, 0, 0);
  destroyed.reset();
  const TestWindow window;
  PostMessageW(window.handle(), kMessage, 0, 0);
  EXPECT_EQ(NumbersTaken(), std::vector<std::uint64_t>{host::TakeCallNumber() - 1});
}

WNDPROC previous_procedure = nullptr;

LRESULT CALLBACK PassesOn(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CallWindowProcW(previous_procedure, window, message, wparam, lparam);
}

TEST(MessageNumbers, ReachTheProcedureBehindASubclass) {
  std::uint64_t seen = 0;
  WindowThread receiver([&](UINT, WPARAM, LPARAM) { return seen = host::MessageNumber(), 0; });
  const auto procedure = reinterpret_cast<LONG_PTR>(&PassesOn);
  const LONG_PTR before = SetWindowLongW(receiver.window(), kWindowProcedure, procedure);
  previous_procedure = reinterpret_cast<WNDPROC>(before);
  const std::uint64_t number = host::TakeCallNumber();
  SendMessageW(receiver.window(), kMessage, 0, 0);
  EXPECT_EQ(seen, number + 1);
  SetWindowLongW(receiver.window(), kWindowProcedure, before);
}

}  // namespace
}  // namespace platform_test
