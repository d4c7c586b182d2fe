// DeviceIoControl: what holds for every handle.
#include "scratch_folder.h"

namespace platform_test {
namespace {

constexpr DWORD kNobodysCode = 0x00DEBC00;

using DeviceControl = FileCalls;

DWORD ErrorOfControl(HANDLE handle) {
  DWORD returned = 0;
  char bytes[4] = {};
  SetLastError(0);
  return Error(DeviceIoControl(handle, kNobodysCode, bytes, sizeof bytes, bytes, sizeof bytes, &returned, nullptr) !=
               FALSE);
}

TEST_F(DeviceControl, NeedsAnOpenHandle) {
  const HANDLE file = Create(TEXT("data"));
  CloseHandle(file);
  EXPECT_EQ(ErrorOfControl(file), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(ErrorOfControl(nullptr), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(ErrorOfControl(INVALID_HANDLE_VALUE), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(DeviceControl, IsNothingThatAFileHas) {
  constexpr DWORD kInvalidFunction = 1;  // platforms differ in how they say it
  const HANDLE file = Create(TEXT("data"));
  const DWORD error = ErrorOfControl(file);
  EXPECT_TRUE(error == ERROR_NOT_SUPPORTED || error == kInvalidFunction) << error;
  CloseHandle(file);
  EXPECT_EQ(Content(TEXT("data")), "");
}

}  // namespace
}  // namespace platform_test
