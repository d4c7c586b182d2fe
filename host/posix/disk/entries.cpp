#include "posix/disk/entries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>
#include <vector>

#include "common/disk/names.h"
#include "posix/disk/host_errors.h"
#include "posix/disk/host_names.h"

namespace host {
namespace {

timespec TimeFrom(const struct statx_timestamp& time) {
  timespec result{};
  result.tv_sec = static_cast<time_t>(time.tv_sec);
  result.tv_nsec = static_cast<long>(time.tv_nsec);
  return result;
}

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

// A reader of its own: descriptors that share a position must not share a scan.
std::unique_ptr<DIR, CloseFolder> OpenScan(int folder) {
  const int descriptor = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  DIR* scan = fdopendir(descriptor);
  if (scan == nullptr) close(descriptor);
  return std::unique_ptr<DIR, CloseFolder>(scan);
}

bool MayBeFile(const dirent& entry) {
  return entry.d_type == DT_REG || entry.d_type == DT_DIR || entry.d_type == DT_UNKNOWN;
}

}  // namespace

bool ReadFacts(int descriptor, FileFacts* facts) {
  struct statx all {};
  if (statx(descriptor, "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &all) != 0) return false;
  facts->id = {makedev(all.stx_dev_major, all.stx_dev_minor), all.stx_ino};
  facts->mode = all.stx_mode;
  facts->size = all.stx_size;
  facts->accessed = TimeFrom(all.stx_atime);
  facts->written = TimeFrom(all.stx_mtime);
  facts->made = (all.stx_mask & STATX_BTIME) != 0 ? TimeFrom(all.stx_btime) : facts->written;
  return true;
}

DWORD OpenEntry(int folder, std::string host_name, DiskEntry* entry) {
  FileDescriptor descriptor(openat(folder, host_name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  if (descriptor.get() < 0) return errno == ENOENT ? ERROR_SUCCESS : HostError();
  FileFacts facts;
  if (!ReadFacts(descriptor.get(), &facts)) return HostError();
  if (facts.file() || facts.folder()) *entry = {std::move(host_name), std::move(descriptor), facts};
  return ERROR_SUCCESS;
}

DWORD FindEntry(const DiskEntry& folder, std::u16string_view name, DiskEntry* entry) {
  const std::u16string folded = FoldName(name);
  std::vector<std::string> candidates;
  DWORD error = ScanFolder(folder.descriptor.get(), [&](std::string_view host_name) {
    if (IsSameName(host_name, folded)) candidates.emplace_back(host_name);
  });
  std::sort(candidates.begin(), candidates.end());
  for (std::string& candidate : candidates) {
    if (error == ERROR_SUCCESS) error = OpenEntry(folder.descriptor.get(), std::move(candidate), entry);
    if (entry->exists()) break;
  }
  return error;
}

DWORD ScanFolder(int folder, const std::function<void(std::string_view host_name)>& found) {
  const auto scan = OpenScan(folder);
  if (scan == nullptr) return HostError();
  errno = 0;
  while (const dirent* entry = readdir(scan.get())) {
    if (MayBeFile(*entry)) found(entry->d_name);
    errno = 0;
  }
  return errno == 0 ? ERROR_SUCCESS : HostError();
}

std::string PinnedPath(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

}  // namespace host
