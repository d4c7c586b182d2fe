// Version resources on the system's own calls: of a library of its own, and of damaged ones.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "module_file.h"
#include "windows/version/version_blocks.h"

namespace platform_test {
namespace {

using qxtest::FileBytes;
using qxtest::PeFile;
using qxtest::VersionResource;
using qxtest::VersionTable;
using qxtest::WideText;

const VersionTable kTable = {
    0x0409, 1200, {{TEXT("FileVersion"), TEXT("1.2.3.4")}, {TEXT("ProductVersion"), TEXT("5")}}};
constexpr LPCWSTR kPaths[] = {TEXT("\\"), TEXT("\\StringFileInfo\\040904b0\\FileVersion"),
                              TEXT("\\VarFileInfo\\Translation"), TEXT("\\StringFileInfo"),
                              TEXT("\\StringFileInfo\\040904b0\\None")};

FileBytes BytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return FileBytes(std::istreambuf_iterator<char>(file), {});
}

void Set16(FileBytes* bytes, std::size_t at, int value) {
  (*bytes)[at] = static_cast<std::uint8_t>(value);
  (*bytes)[at + 1] = static_cast<std::uint8_t>(value >> 8);
}

TEST(VersionOfASystemLibrary, IsRead) {
  WCHAR system[MAX_PATH];
  ASSERT_NE(GetSystemDirectoryW(system, MAX_PATH), 0u);
  const ModuleFile module(BytesOf(std::filesystem::path(system) / "version.dll"));
  FileBytes resource(GetFileVersionInfoSizeW(module.path(), nullptr));
  ASSERT_FALSE(resource.empty()) << GetLastError();
  ASSERT_TRUE(GetFileVersionInfoW(module.path(), 0, static_cast<DWORD>(resource.size()), resource.data()));
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(resource.data(), TEXT("\\StringFileInfo\\040904b0\\OriginalFilename"), &value, &size));
  EXPECT_EQ(WideText(static_cast<const WCHAR*>(value)), TEXT("version.dll"));
}

/// Asks for everything in a resource that lies at the end of its memory, so that a read behind it is seen.
void AskForAll(const FileBytes& resource) {
  constexpr std::size_t kPage = 4096;
  auto* memory = static_cast<BYTE*>(VirtualAlloc(nullptr, 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
  VirtualAlloc(memory, kPage, MEM_COMMIT, PAGE_READWRITE);
  BYTE* bytes = memory + kPage - resource.size();
  std::copy(resource.begin(), resource.end(), bytes);
  if (host::CutVersionBlocks(bytes, resource.size())) {
    for (const LPCWSTR path : kPaths) {
      void* value = nullptr;
      UINT size = 0;
      if (!VerQueryValueW(bytes, path, &value, &size) || size == 0) continue;
      EXPECT_GE(static_cast<BYTE*>(value), bytes);
      EXPECT_LE(static_cast<BYTE*>(value) + size, memory + kPage);
    }
  }
  VirtualFree(memory, 0, MEM_RELEASE);
}

TEST(VersionOfADamagedFile, IsCutToItsBytesWhateverTheBlocksSay) {
  const FileBytes whole = VersionResource({kTable});
  AskForAll(whole);
  for (std::size_t at = 0; at + 2 <= whole.size(); at += 2) {
    for (const int value : {0, 1, 5, 6, 7, 0x7FFF, 0xFFFF}) {
      FileBytes damaged = whole;
      Set16(&damaged, at, value);
      AskForAll(damaged);
    }
  }
  for (std::size_t size = 0; size < whole.size(); ++size) {
    AskForAll(FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
  }
}

TEST(VersionOfADamagedFile, IsTheSameWhenNothingIsToBeCut) {
  const FileBytes whole = VersionResource({kTable});
  FileBytes cut = whole;
  EXPECT_TRUE(host::CutVersionBlocks(cut.data(), cut.size()));
  EXPECT_EQ(cut, whole);
}

}  // namespace
}  // namespace platform_test
