#include "common/files/file_root.h"

#include <fcntl.h>

#include <cerrno>
#include <mutex>
#include <system_error>
#include <utility>

#include "posix/disk/file_root.h"

namespace host {
namespace {

struct Disk {
  std::mutex mutex;
  std::shared_ptr<const FileDescriptor> root;  // guarded by mutex
};

Disk& TheDisk() {
  static auto* disk = new Disk;  // files may still be in use while the process ends
  return *disk;
}

void UseRoot(std::shared_ptr<const FileDescriptor> root) {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  disk.root.swap(root);
}

}  // namespace

void SetFileRoot(const std::string& folder) {
  auto root = std::make_shared<FileDescriptor>(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (root->get() < 0) throw std::system_error(errno, std::generic_category(), folder);
  UseRoot(std::move(root));
}

void ClearFileRoot() { UseRoot(nullptr); }

std::shared_ptr<const FileDescriptor> FileRoot() {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  return disk.root;
}

}  // namespace host
