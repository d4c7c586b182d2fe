#include "common/files/file_space.h"

#include "common/files/file_root.h"

namespace host {
namespace {

struct FileSpace {
  std::mutex mutex;
  std::optional<std::uint64_t> free;  // guarded by mutex; nothing: no limit of its own
  std::mutex names;
};

FileSpace& TheSpace() {
  static auto* space = new FileSpace;  // files may still be in use while the process ends
  return *space;
}

}  // namespace

void SetFreeFileSpace(std::optional<std::uint64_t> bytes) {
  FileSpace& space = TheSpace();
  const std::lock_guard<std::mutex> lock(space.mutex);
  space.free = bytes;
}

bool TakeFileSpace(std::uint64_t bytes) {
  FileSpace& space = TheSpace();
  const std::lock_guard<std::mutex> lock(space.mutex);
  if (!space.free) return true;
  if (*space.free < bytes) return false;
  *space.free -= bytes;
  return true;
}

void GiveFileSpace(std::uint64_t bytes) {
  FileSpace& space = TheSpace();
  const std::lock_guard<std::mutex> lock(space.mutex);
  if (space.free) *space.free += bytes;
}

std::unique_lock<std::mutex> LockNames() { return std::unique_lock<std::mutex>(TheSpace().names); }

}  // namespace host
