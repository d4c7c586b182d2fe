// Folders of this machine's user, and the lock that keeps one to a single program.
#ifndef QXSIM_SYSTEM_FOLDERS_H
#define QXSIM_SYSTEM_FOLDERS_H

#include <filesystem>
#include <memory>

namespace qxsim {

/// A new folder for temporary files, with a name of its own that begins with "qxsim-". Throws StartError.
std::filesystem::path MakeTemporaryFolder();

/// Where programs keep their user's data, qxsim's in a folder of its own. Throws StartError when the environment does
/// not say.
std::filesystem::path UserDataFolder();

/// A lock file, held by one program at a time for as long as the object lives, however the program ends.
class FolderLock {
 public:
  virtual ~FolderLock() = default;

  /// Throws StartError when the file cannot be made or another program holds it.
  static std::unique_ptr<FolderLock> Take(const std::filesystem::path& file);
};

}  // namespace qxsim

#endif
