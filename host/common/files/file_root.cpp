#include "common/files/file_root.h"

#include <mutex>

#include "common/disk/root_folder.h"

namespace host {
namespace {

struct Disk {
  std::mutex mutex;
  std::shared_ptr<const RootFolder> root;  // guarded by mutex
};

Disk& TheDisk() {
  static auto* disk = new Disk;  // files may still be in use while the process ends
  return *disk;
}

void UseRoot(std::shared_ptr<const RootFolder> root) {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  disk.root.swap(root);
}

}  // namespace

void SetFileRoot(const std::string& folder) { UseRoot(OpenRootFolder(folder)); }

void ClearFileRoot() { UseRoot(nullptr); }

std::shared_ptr<const RootFolder> FileRoot() {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  return disk.root;
}

}  // namespace host
