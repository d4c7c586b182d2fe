// Version resources of damaged files and of one that another compiler made, as this host reads them.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "common/kernel/handles.h"
#include "common/streams/devices.h"
#include "module_file.h"
#include "posix/version/executable.h"
#include "posix/version/version_block.h"

namespace platform_test {
namespace {

using host::Bytes;
using qxtest::FileBytes;
using qxtest::PeFile;
using qxtest::VersionBlock;
using qxtest::VersionResource;
using qxtest::VersionTable;

const VersionTable kTable = {0x0409, 1200, {{u"FileVersion", u"1.2.3.4"}, {u"ProductVersion", u"5"}}};
constexpr char16_t kFileVersion[] = u"\\StringFileInfo\\040904b0\\FileVersion";

/// A copy of exactly this size, so that a read behind it is seen.
DWORD ErrorOf(const FileBytes& file, Bytes* found = nullptr) {
  const FileBytes exact = file;
  Bytes resource;
  const DWORD error = host::FindVersionResource({exact.data(), exact.size()}, &resource);
  if (found != nullptr) *found = resource;
  return error;
}

std::u16string TextOf(const FileBytes& resource, const char16_t* path) {
  void* value = nullptr;
  UINT size = 0;
  if (!VerQueryValueW(resource.data(), path, &value, &size)) return u"?";
  std::u16string text(size, u'\0');
  std::memcpy(text.data(), value, size * sizeof(char16_t));
  return text.substr(0, text.find(u'\0'));
}

void Set32(FileBytes* bytes, std::size_t at, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) (*bytes)[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

TEST(VersionOfARealFile, IsReadFromALibraryThatACompilerMade) {
  std::ifstream file(QX_TEST_MODULE, std::ios::binary);
  const ModuleFile module(FileBytes(std::istreambuf_iterator<char>(file), {}));
  FileBytes resource(GetFileVersionInfoSizeW(module.path(), nullptr));
  ASSERT_FALSE(resource.empty());
  ASSERT_TRUE(GetFileVersionInfoW(module.path(), 0, static_cast<DWORD>(resource.size()), resource.data()));
  EXPECT_EQ(TextOf(resource, u"\\StringFileInfo\\040704b0\\FileVersion"), u"1, 2, 0, 15");
  EXPECT_EQ(TextOf(resource, u"\\StringFileInfo\\040704b0\\ProductVersion"), u"3.4.5.6");
  EXPECT_EQ(TextOf(resource, u"\\StringFileInfo\\040704b0\\FileDescription"), u"A module for tests");
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(resource.data(), u"\\VarFileInfo\\Translation", &value, &size));
  ASSERT_EQ(size, 4u);
  EXPECT_EQ(std::memcmp(value, "\x07\x04\xB0\x04", 4), 0);
}

TEST(VersionOfADamagedFile, IsErrorAtEveryLengthThatLacksSomething) {
  constexpr std::size_t kBeforeTheResource = 0x600 + 32 + 24 + 24 + 16;  // headers and code, the tree, the data entry
  const FileBytes whole = PeFile(VersionResource({kTable}));
  const std::size_t needed = kBeforeTheResource + VersionResource({kTable}).size();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    Bytes found;
    const DWORD error = ErrorOf(FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), &found);
    const DWORD expected = size < 0x44     ? ERROR_RESOURCE_DATA_NOT_FOUND  // not even the executable's mark
                           : size < needed ? ERROR_BAD_FORMAT
                                           : ERROR_SUCCESS;
    ASSERT_EQ(error, expected) << size;
    ASSERT_EQ(found.size(), error == ERROR_SUCCESS ? VersionResource({kTable}).size() : 0u) << size;
  }
}

TEST(VersionOfADamagedFile, IsErrorWhenATreesEntryLeadsElsewhere) {
  const FileBytes whole = PeFile(VersionResource({kTable}));
  constexpr std::size_t kTree = 0x600;
  constexpr std::size_t kVersionEntry = kTree + 16 + 8 + 4, kLanguageEntry = kTree + 32 + 24 + 16 + 4;
  constexpr std::size_t kData = kTree + 32 + 24 + 24;
  const struct {
    std::size_t at;
    std::uint32_t value;
  } damages[] = {{kVersionEntry, 0},
                 {kVersionEntry, 0xFFFFFFFF},
                 {kLanguageEntry, 0x80000000},
                 {kLanguageEntry, 0x7FFFFFFF},
                 {kData, 0},
                 {kData, 0xFFFFFFF0},
                 {kData + 4, 0},
                 {kData + 4, 5},
                 {kData + 4, 0x10000},
                 {kData + 4, 0xFFFFFFFF}};
  for (const auto& damage : damages) {
    FileBytes file = whole;
    Set32(&file, damage.at, damage.value);
    EXPECT_EQ(ErrorOf(file), ERROR_BAD_FORMAT) << damage.at << " " << damage.value;
  }
}

TEST(VersionOfADamagedFile, IsErrorWhenTheSectionsDoNotHoldTheResources) {
  FileBytes file = PeFile(VersionResource({kTable}));
  Set32(&file, 0x40 + 24 + 240 + 40 + 12, 0x9000);
  EXPECT_EQ(ErrorOf(file), ERROR_BAD_FORMAT);
}

TEST(VersionOfADamagedFile, NeverLeavesTheBufferWhateverTheBlocksSay) {
  const FileBytes whole = VersionResource({kTable});
  for (std::size_t at = 0; at + 2 <= whole.size(); at += 2) {
    for (const int value : {0, 1, 5, 6, 7, 0x7FFF, 0xFFFF}) {
      FileBytes damaged = whole;
      damaged[at] = static_cast<std::uint8_t>(value);
      damaged[at + 1] = static_cast<std::uint8_t>(value >> 8);
      const Bytes resource(damaged.data(), damaged.size());
      for (const char16_t* path : {u"\\", kFileVersion, u"\\VarFileInfo\\Translation", u"\\StringFileInfo"}) {
        const auto found = host::FindVersionValue(resource, path);
        if (!found || found->bytes.size() == 0) continue;
        ASSERT_GE(found->bytes.data(), damaged.data());
        ASSERT_LE(found->bytes.data() + found->bytes.size(), damaged.data() + damaged.size());
      }
    }
  }
}

/// A file without an end.
class Endless final : public host::Stream {
 public:
  std::string Name() const override { return "endless"; }
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override {
    std::memset(buffer, 'M', bytes);
    *read = bytes;
    return TRUE;
  }
  BOOL Write(const void*, DWORD, DWORD*) override { return FALSE; }
};

TEST(VersionInfoCalls, ReadNoMoreThanALargeFile) {
  host::RegisterDevice("\\Endless.dll", [](const host::OpenRequest&) { return std::make_shared<Endless>(); });
  EXPECT_EQ(GetFileVersionInfoSizeW(u"\\Endless.dll", nullptr), 0u);
  EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
  host::UnregisterDevice("\\Endless.dll");
}

}  // namespace
}  // namespace platform_test
