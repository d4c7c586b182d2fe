// What every host adds to the platform's rules for handles, threads, windows and messages.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "common/windows/windows_messages.h"
#include "test_window.h"

namespace platform_test {
namespace {

TEST(Handles, FitIntoThirtyTwoBits) {
  const Handle event = ManualEvent();
  const auto value = reinterpret_cast<std::uintptr_t>(static_cast<HANDLE>(event));
  EXPECT_EQ(value, value & 0x7FFFFFFF);
}

TEST(Handles, ThoseOfTheLibraryAreCounted) {
  const std::size_t before = host::LibraryHandles();
  Handle librarys = ManualEvent();
  HANDLE own = host::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(host::LibraryHandles(), before + 1);
  librarys.Close();
  EXPECT_EQ(host::LibraryHandles(), before);
  host::CloseHandle(own);
  EXPECT_EQ(host::LibraryHandles(), before);
}

TEST(HostThreads, ThoseOfTheLibraryAreCountedUntilTheyEnd) {
  const std::size_t before = host::LibraryThreads();
  const Handle go = ManualEvent();
  TestThread thread([&] { return Wait(go); });
  EXPECT_EQ(host::LibraryThreads(), before + 1);
  Set(go);
  thread.Join();
  EXPECT_EQ(host::LibraryThreads(), before);
}

TEST(HostThreads, OneThatHasBeenResumedIsNotEnded) {
  const Handle go = ManualEvent();
  TestThread thread([&] { return Wait(go); }, CREATE_SUSPENDED);
  ResumeThread(thread.handle());
  EXPECT_EQ(TerminateThread(thread.handle(), 7), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
  EXPECT_EQ(TerminateThread(go, 7), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
  Set(go);
  EXPECT_EQ(thread.Join(), WAIT_OBJECT_0);
}

TEST(HostThreads, ThoseThatAreEndedUnresumedAreNotCounted) {
  const std::size_t before = host::LibraryThreads();
  TestThread thread([] { return 0; }, CREATE_SUSPENDED);
  EXPECT_EQ(host::LibraryThreads(), before + 1);
  TerminateThread(thread.handle(), 0);
  thread.Join();
  EXPECT_EQ(host::LibraryThreads(), before);
}

TEST(HostThreads, UnknownFlagsAreRefused) {
  const auto start = [](LPVOID) -> DWORD { return 0; };
  EXPECT_EQ(CreateThread(nullptr, 0, start, nullptr, 0x10, nullptr), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(HostWindows, HandleFitsIntoThirtyTwoBitsAndIsNotUsedAgainSoon) {
  std::set<std::uintptr_t> handles;
  for (int i = 0; i < 500; ++i) handles.insert(reinterpret_cast<std::uintptr_t>(TestWindow().handle()));
  EXPECT_EQ(handles.size(), 500u);
  EXPECT_LT(*handles.rbegin(), 0x80000000u);
}

TEST(HostWindows, ParentsAreNotOffered) {
  const TestWindow window;
  HWND child =
      CreateWindowExW(0, TEXT("QX-TEST.window"), nullptr, 0, 0, 0, 0, 0, window.handle(), nullptr, nullptr, nullptr);
  EXPECT_EQ(child, nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST(HostMessages, QueueHoldsTenThousandPostedOnes) {
  const TestWindow window;
  for (std::size_t i = 0; i < host::kMostPosted; ++i) ASSERT_NE(PostMessageW(window.handle(), WM_APP, 0, 0), FALSE);
  EXPECT_EQ(PostMessageW(window.handle(), WM_APP, 0, 0), FALSE);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_QUOTA));
  HandleMessages();
  EXPECT_EQ(window.messages().size(), host::kMostPosted);
}

TEST(HostMessages, HandlingOneIsTheApplicationsWorkAndNotTheLibrarys) {
  const TestWindow window([](UINT, WPARAM, LPARAM) { return LRESULT{host::InLibraryCall()}; });
  EXPECT_EQ(SendMessageW(window.handle(), WM_APP, 0, 0), 0);
}

}  // namespace
}  // namespace platform_test
