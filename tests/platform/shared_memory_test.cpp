// Blocks of shared memory within one process.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "kernel_objects.h"

namespace platform_test {
namespace {

char* View(HANDLE mapping) { return static_cast<char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0)); }

TEST(SharedMemory, NewBlockIsZeroedAndAligned) {
  const Handle block = Block(TEXT("QX-TEST.block"), 128);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  char* view = View(block);
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(view) % 8, 0u);
  const char zeros[128] = {};
  EXPECT_EQ(std::memcmp(view, zeros, sizeof zeros), 0);
  EXPECT_NE(UnmapViewOfFile(view), FALSE);
}

TEST(SharedMemory, TwoHandlesOfOneNameShowTheSameBytes) {
  const Handle block = Block(TEXT("QX-TEST.block"), 64);
  const Handle again = Block(TEXT("QX-TEST.block"), 64);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  char* one = View(block);
  char* other = View(again);
  std::strcpy(one, "focus");
  EXPECT_STREQ(other, "focus");
  UnmapViewOfFile(one);
  UnmapViewOfFile(other);
}

TEST(SharedMemory, UnnamedBlocksAreTheirOwn) {
  const Handle first = Block(nullptr, 4096), second = Block(nullptr, 1);
  char* one = View(first);
  char* other = View(second);
  one[0] = 'x';
  one[4095] = 'y';
  EXPECT_EQ(other[0], 0);
  UnmapViewOfFile(one);
  UnmapViewOfFile(other);
}

TEST(SharedMemory, ViewKeepsTheBytesWhenTheHandleIsClosed) {
  Handle block = Block(TEXT("QX-TEST.block"), 64);
  char* view = View(block);
  view[5] = 'x';
  block.Close();
  EXPECT_EQ(view[5], 'x');
  view[63] = 'y';
  EXPECT_EQ(view[63], 'y');
  EXPECT_NE(UnmapViewOfFile(view), FALSE);
}

TEST(SharedMemory, NameGoesWithTheLastHandleWhateverViewsThereAre) {
  Handle block = Block(TEXT("QX-TEST.block"), 64), second = Block(TEXT("QX-TEST.block"), 64);
  char* view = View(block);
  view[5] = 'x';
  block.Close();
  EXPECT_NE(Block(TEXT("QX-TEST.block"), 64), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  second.Close();
  const Handle fresh = Block(TEXT("QX-TEST.block"), 64);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  char* other = View(fresh);
  EXPECT_EQ(other[5], 0);
  other[5] = 'z';
  EXPECT_EQ(view[5], 'x');
  UnmapViewOfFile(other);
  UnmapViewOfFile(view);
}

TEST(SharedMemory, IsGoneWithItsLastHandleAndView) {
  Handle block = Block(TEXT("QX-TEST.block"), 64);
  char* view = View(block);
  view[5] = 'x';
  UnmapViewOfFile(view);
  block.Close();
  const Handle fresh = Block(TEXT("QX-TEST.block"), 64);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  char* other = View(fresh);
  EXPECT_EQ(other[5], 0);
  UnmapViewOfFile(other);
}

TEST(SharedMemory, BlockOfNoBytesIsRefused) {
  EXPECT_EQ(Block(TEXT("QX-TEST.block"), 0), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(SharedMemory, MappingWhatIsNoBlockFails) {
  const Handle event = ManualEvent();
  EXPECT_EQ(View(event), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(SharedMemory, UnmappingTwiceFails) {
  constexpr DWORD kInvalidAddress = 487;
  const Handle block = Block(nullptr, 64);
  char* view = View(block);
  EXPECT_NE(UnmapViewOfFile(view), FALSE);
  EXPECT_EQ(UnmapViewOfFile(view), FALSE);
  EXPECT_EQ(GetLastError(), kInvalidAddress);
}

}  // namespace
}  // namespace platform_test
