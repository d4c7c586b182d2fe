#include "common/files/file_root.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "posix/disk/file_root.h"

namespace host {
namespace {

struct Disk {
  std::mutex mutex;
  std::shared_ptr<const FileDescriptor> root;  // guarded by mutex
  std::optional<std::uint64_t> free_space;     // guarded by mutex; nothing: no limit of its own
  std::mutex names;
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

void SetFreeFileSpace(std::optional<std::uint64_t> bytes) {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  disk.free_space = bytes;
}

bool TakeFileSpace(std::uint64_t bytes) {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  if (!disk.free_space) return true;
  if (*disk.free_space < bytes) return false;
  *disk.free_space -= bytes;
  return true;
}

void GiveFileSpace(std::uint64_t bytes) {
  Disk& disk = TheDisk();
  const std::lock_guard<std::mutex> lock(disk.mutex);
  if (disk.free_space) *disk.free_space += bytes;
}

std::unique_lock<std::mutex> LockNames() { return std::unique_lock<std::mutex>(TheDisk().names); }

}  // namespace host
