// Calls on version resources with bad arguments, small buffers and large files.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

#include "common/kernel/handles.h"
#include "module_file.h"

namespace platform_test {
namespace {

using qxtest::FileBytes;
using qxtest::PeFile;
using qxtest::VersionBlock;
using qxtest::VersionResource;
using qxtest::VersionTable;
using qxtest::WideText;

constexpr DWORD kOutermostBlock = 40;  // its lengths and its name

const VersionTable kTable = {
    0x0409, 1200, {{TEXT("FileVersion"), TEXT("1.2.3.4")}, {TEXT("ProductVersion"), TEXT("5")}}};
constexpr WCHAR kFileVersion[] = TEXT("\\StringFileInfo\\040904b0\\FileVersion");

WideText TextOf(const FileBytes& resource, const WCHAR* path) {
  void* value = nullptr;
  UINT size = 0;
  if (!VerQueryValueW(resource.data(), path, &value, &size)) return TEXT("?");
  WideText text(size, TEXT('\0'));
  std::memcpy(text.data(), value, size * sizeof(WCHAR));
  return text.substr(0, text.find(TEXT('\0')));
}

TEST(VersionInfoCalls, CutTheResourceToTheBuffer) {
  const ModuleFile module(PeFile(VersionResource({kTable})));
  const DWORD size = GetFileVersionInfoSizeW(module.path(), nullptr);
  for (DWORD cut = 6; cut <= size; ++cut) {
    FileBytes resource(cut);
    if (!GetFileVersionInfoW(module.path(), 0, cut, resource.data())) {
      EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
      EXPECT_LT(cut, kOutermostBlock);
      continue;
    }
    const WideText text = TextOf(resource, kFileVersion);
    ASSERT_TRUE(text == TEXT("?") || WideText(TEXT("1.2.3.4")).rfind(text, 0) == 0) << cut;
  }
}

TEST(VersionInfoCalls, LeaveTheRestOfALargerBufferAlone) {
  const ModuleFile module(PeFile(VersionResource({kTable})));
  const DWORD size = GetFileVersionInfoSizeW(module.path(), nullptr);
  FileBytes resource(size + 100, 0xCD);
  ASSERT_TRUE(GetFileVersionInfoW(module.path(), 0, size + 100, resource.data()));
  EXPECT_EQ(std::count(resource.begin() + size, resource.end(), 0xCD), 100);
  EXPECT_EQ(TextOf(resource, kFileVersion), TEXT("1.2.3.4"));
}

TEST(VersionInfoCalls, RefuseBadArguments) {
  const ModuleFile module(PeFile(VersionResource({kTable})));
  std::uint8_t buffer[5];
  EXPECT_EQ(GetFileVersionInfoSizeW(nullptr, nullptr), 0u);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_FALSE(GetFileVersionInfoW(module.path(), 0, 100, nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_DATA});
  EXPECT_FALSE(GetFileVersionInfoW(module.path(), 0, sizeof buffer, buffer));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  const FileBytes resource = VersionResource({kTable});
  void* value = nullptr;
  UINT size = 0;
  EXPECT_FALSE(VerQueryValueW(nullptr, TEXT("\\"), &value, &size));
  EXPECT_FALSE(VerQueryValueW(resource.data(), nullptr, &value, &size));
  EXPECT_FALSE(VerQueryValueW(resource.data(), TEXT("\\"), nullptr, &size));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_TRUE(VerQueryValueW(resource.data(), TEXT(""), &value, nullptr));
}

TEST(VersionInfoCalls, PointToAZeroForAValueOfNoLength) {
  const FileBytes resource =
      VersionBlock(TEXT("VS_VERSION_INFO"), false, {}, 0, {VersionBlock(TEXT("A"), true, {}, 0, {})});
  void* value = nullptr;
  UINT size = 7;
  ASSERT_TRUE(VerQueryValueW(resource.data(), TEXT("\\A"), &value, &size));
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(*static_cast<const WCHAR*>(value), 0);
}

TEST(VersionInfoCalls, NeverOpenADevice) {
  EXPECT_EQ(GetFileVersionInfoSizeW(TEXT("COM5:"), nullptr), 0u);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(VersionInfoCalls, CloseTheFile) {
  const ModuleFile module(PeFile(VersionResource({kTable})));
  const std::size_t before = host::LibraryHandles();
  EXPECT_NE(GetFileVersionInfoSizeW(module.path(), nullptr), 0u);
  EXPECT_EQ(host::LibraryHandles(), before);
}

TEST(VersionInfoCalls, ReadNoFileOfMoreThan64Mebibytes) {
  const ScratchFolder folder;
  const WideText path = folder.Path(TEXT("Large.dll"));
  CloseHandle(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  std::filesystem::resize_file(std::filesystem::u8path(folder.host_path()) / "Large.dll",
                               (std::uintmax_t{64} << 20) + 1);
  EXPECT_EQ(GetFileVersionInfoSizeW(path.c_str(), nullptr), 0u);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
}

}  // namespace
}  // namespace platform_test
