// On Windows the test's folder is "\Scratch" below a root of its own, which has a folder around it to itself.
#include <filesystem>

#include "common/files/file_root.h"
#include "scratch_folder.h"
#include "win32_this_machine.h"

namespace platform_test {
namespace {

namespace fs = std::filesystem;

// Process numbers come again, and a test that was killed has left its folder.
fs::path NewFolder() {
  LARGE_INTEGER now = {};
  ::QueryPerformanceCounter(&now);
  const std::wstring name = std::to_wstring(::GetCurrentProcessId()) + L'-' + std::to_wstring(now.QuadPart);
  return fs::temp_directory_path() / (L"qx-files-" + name);
}

// By a path that the system takes as it stands: names as long as they may be, and "NUL" is a file. What is read-only
// stays at first.
void RemoveAll(const fs::path& path) {
  const fs::path folder = L"\\\\?\\" + path.native();
  std::error_code error;
  if (fs::remove_all(folder, error) != static_cast<std::uintmax_t>(-1)) return;
  for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
    fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add, error);
  }
  EXPECT_NE(fs::remove_all(folder, error), static_cast<std::uintmax_t>(-1)) << error.message();
}

}  // namespace

ScratchFolder::ScratchFolder() : path_(TEXT("\\Scratch")) {
  const fs::path root = NewFolder() / "files";
  EXPECT_TRUE(fs::create_directories(root));
  host::SetFileRoot(root.u8string());
  host_path_ = (root / "Scratch").u8string();
  EXPECT_TRUE(CreateDirectoryW(path_.c_str(), nullptr));
}

ScratchFolder::~ScratchFolder() {
  qxtest::RemoveLinks();
  host::ClearFileRoot();
  host::SetFreeFileSpace(std::nullopt);
  RemoveAll(fs::u8path(host_path_).make_preferred().parent_path().parent_path());
}

}  // namespace platform_test
