// On this host the test's folder is "\Scratch" below a root of its own, which has a folder around it to itself.
#include <stdlib.h>

#include <filesystem>

#include "common/files/file_root.h"
#include "scratch_folder.h"

namespace platform_test {

ScratchFolder::ScratchFolder() : path_(TEXT("\\Scratch")) {
  std::string around = (std::filesystem::temp_directory_path() / "qx-files-XXXXXX").string();
  EXPECT_NE(mkdtemp(around.data()), nullptr);
  const std::string root = around + "/files";
  std::filesystem::create_directory(root);
  host::SetFileRoot(root);
  host_path_ = root + "/Scratch";
  EXPECT_TRUE(CreateDirectoryW(path_.c_str(), nullptr));
}

ScratchFolder::~ScratchFolder() {
  host::ClearFileRoot();
  host::SetFreeFileSpace(std::nullopt);
  const std::filesystem::path around = std::filesystem::path(host_path_).parent_path().parent_path();
  std::error_code ignored;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(around, ignored)) {
    if (!entry.is_symlink()) {
      std::filesystem::permissions(entry, std::filesystem::perms::owner_all, std::filesystem::perm_options::add,
                                   ignored);
    }
  }
  std::filesystem::remove_all(around, ignored);
}

}  // namespace platform_test
