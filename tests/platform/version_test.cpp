// Version resources of program and library files.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "module_file.h"
#include "scratch_folder.h"

namespace platform_test {
namespace {

using qxtest::FileBytes;
using qxtest::PeFile;
using qxtest::PeLayout;
using qxtest::VersionResource;
using qxtest::VersionTable;
using qxtest::WideText;

const VersionTable kGerman = {
    0x0407, 1252, {{TEXT("FileVersion"), TEXT("1, 2, 0, 15")}, {TEXT("ProductVersion"), TEXT("3.4.5.6")}}};
const VersionTable kEnglish = {0x0409, 1200, {{TEXT("FileVersion"), TEXT("9.9")}, {TEXT("Comments"), TEXT("")}}};

/// The resource of a file, as an application loads it; empty when there is none.
FileBytes Load(const ModuleFile& file) {
  DWORD unused = 1;
  FileBytes resource(GetFileVersionInfoSizeW(file.path(), &unused));
  EXPECT_EQ(unused, 0u);
  if (!resource.empty()) {
    EXPECT_TRUE(GetFileVersionInfoW(file.path(), 0, static_cast<DWORD>(resource.size()), resource.data()));
  }
  return resource;
}

FileBytes Load(const FileBytes& file) { return Load(ModuleFile(file)); }

/// The text of this path up to its zero; "?" when it is not there.
WideText TextOf(const FileBytes& resource, LPCWSTR path) {
  void* value = nullptr;
  UINT size = 0;
  if (!VerQueryValueW(resource.data(), path, &value, &size)) return TEXT("?");
  const WideText text(static_cast<const WCHAR*>(value), size);
  return text.substr(0, text.find(WCHAR{0}));
}

DWORD ErrorOf(const FileBytes& file) {
  const ModuleFile module(file);
  SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(GetFileVersionInfoSizeW(module.path(), nullptr), 0u);
  const DWORD error = GetLastError();
  std::uint8_t buffer[64];
  EXPECT_FALSE(GetFileVersionInfoW(module.path(), 0, sizeof buffer, buffer));
  EXPECT_EQ(GetLastError(), error);
  return error;
}

TEST(VersionInfo, GivesTheTextsOfItsTranslations) {
  const FileBytes resource = Load(PeFile(VersionResource({kGerman, kEnglish})));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040704e4\\FileVersion")), TEXT("1, 2, 0, 15"));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040704e4\\ProductVersion")), TEXT("3.4.5.6"));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040904b0\\FileVersion")), TEXT("9.9"));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040904b0\\Comments")), WideText());
}

TEST(VersionInfo, ReadsFilesOf32Bits) {
  PeLayout layout;
  layout.bits = 32;
  const FileBytes resource = Load(PeFile(VersionResource({kGerman}), layout));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040704e4\\ProductVersion")), TEXT("3.4.5.6"));
}

TEST(VersionInfo, ListsItsTranslations) {
  const FileBytes resource = Load(PeFile(VersionResource({kGerman, kEnglish})));
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(resource.data(), TEXT("\\VarFileInfo\\Translation"), &value, &size));
  ASSERT_EQ(size, 8u);
  const auto* words = static_cast<const WORD*>(value);
  EXPECT_EQ((std::vector<WORD>(words, words + 4)), (std::vector<WORD>{0x407, 1252, 0x409, 1200}));
}

TEST(VersionInfo, TellsTheFixedPartAsTheRoot) {
  const FileBytes resource = Load(PeFile(VersionResource({kGerman})));
  void* value = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(resource.data(), TEXT("\\"), &value, &size));
  ASSERT_EQ(size, 52u);
  const auto* words = static_cast<const DWORD*>(value);
  EXPECT_EQ(words[0], 0xFEEF04BD);
  EXPECT_EQ(words[2], 0x10002u);
  EXPECT_EQ(words[3], 0x30004u);
}

TEST(VersionInfo, ComparesNamesWithoutRegardToLetterCase) {
  const FileBytes resource = Load(PeFile(VersionResource({kGerman})));
  EXPECT_EQ(TextOf(resource, TEXT("\\STRINGFILEINFO\\040704E4\\fileversion")), TEXT("1, 2, 0, 15"));
}

TEST(VersionInfo, HasNoOtherValues) {
  const FileBytes resource = Load(PeFile(VersionResource({kGerman})));
  for (const LPCWSTR path : {TEXT("\\StringFileInfo\\040904b0\\FileVersion"), TEXT("\\StringFileInfo\\040704e4\\File"),
                             TEXT("\\StringFileInfo\\040704e4\\FileVersions"), TEXT("\\FileVersion"),
                             TEXT("\\StringFileInfo\\040704e4\\FileVersion\\More")}) {
    void* value = nullptr;
    UINT size = 7;
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(VerQueryValueW(resource.data(), path, &value, &size));
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
  }
}

// A Windows for one of these languages would have chosen its own.
TEST(VersionInfo, IsThatOfTheFirstLanguageWhenNoneIsTheSystems) {
  constexpr WORD kGalician = 0x0456, kYi = 0x0478, kMaori = 0x0481;
  PeLayout layout;
  layout.languages = {kGalician, kYi, kMaori};
  const FileBytes resource = Load(PeFile(VersionResource({kEnglish}), layout));
  EXPECT_EQ(TextOf(resource, TEXT("\\StringFileInfo\\040904b0\\FileVersion")), TEXT("9.9"));
}

TEST(VersionInfo, IsMissingInAFileWithoutResources) {
  PeLayout layout;
  layout.has_resources = false;
  EXPECT_EQ(ErrorOf(PeFile({}, layout)), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
}

TEST(VersionInfo, IsMissingInAFileWithOtherResourcesOnly) {
  PeLayout layout;
  layout.type = 24;
  EXPECT_EQ(ErrorOf(PeFile(VersionResource({kGerman}), layout)), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
}

TEST(VersionInfo, IsMissingInAFileThatNumbersItOtherwise) {
  PeLayout layout;
  layout.number = 2;
  EXPECT_EQ(ErrorOf(PeFile(VersionResource({kGerman}), layout)), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
}

TEST(VersionInfo, IsMissingInAFileThatIsNoExecutable) {
  const std::string text = "a text of a length that could be a header, but is none at all; and then some more of it";
  EXPECT_EQ(ErrorOf({text.begin(), text.end()}), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
  EXPECT_EQ(ErrorOf({'M', 'Z'}), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
}

TEST(VersionInfo, OfAMissingFileIsError2) {
  const ScratchFolder folder;
  SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(GetFileVersionInfoSizeW(folder.Path(TEXT("NoSuchModule.dll")).c_str(), nullptr), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

}  // namespace
}  // namespace platform_test
