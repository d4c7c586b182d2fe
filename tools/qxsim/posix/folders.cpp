#include "qxsim/system/folders.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "posix/kernel/file_descriptor.h"
#include "qxsim/start_error.h"

namespace qxsim {
namespace {

namespace fs = std::filesystem;

class LockedFile final : public FolderLock {
 public:
  explicit LockedFile(const std::string& file)
      : descriptor_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (descriptor_.get() < 0) throw StartError("home: " + file + ": " + std::strerror(errno));
    if (flock(descriptor_.get(), LOCK_EX | LOCK_NB) == 0) return;
    throw StartError("home: " + fs::path(file).parent_path().string() + ": in use by another qxsim");
  }

 private:
  const host::FileDescriptor descriptor_;
};

}  // namespace

fs::path MakeTemporaryFolder() {
  std::error_code error;
  fs::path folder = fs::temp_directory_path(error);
  if (error) folder = "/tmp";
  std::string pattern = (folder / "qxsim-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw StartError("home: " + pattern + ": " + std::strerror(errno));
  return pattern;
}

fs::path UserDataFolder() {
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') return data;
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return fs::path(home) / ".local/share";
  throw StartError("home: neither XDG_DATA_HOME nor HOME is set; say --home");
}

std::unique_ptr<FolderLock> FolderLock::Take(const fs::path& file) { return std::make_unique<LockedFile>(file); }

}  // namespace qxsim
