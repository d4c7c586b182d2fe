// Files and folders of this machine under the root: pinned by descriptors, never reached through a symbolic link.
//
// A walk opens one name at a time below the descriptor of the folder before, without following links, so that nothing
// that happens on this machine meanwhile leads outside. What is neither a regular file nor a folder does not exist for
// the instrument and is never opened. Data, attributes and times are reached through /proc/self/fd, that is, through
// what the descriptor has pinned.
//
// Of several names on this machine that differ in letter case alone, the first in byte order is the file; the others do
// not exist for the instrument.
#ifndef QXHOST_POSIX_DISK_ENTRIES_H
#define QXHOST_POSIX_DISK_ENTRIES_H

#include <sys/stat.h>
#include <windows.h>

#include <cstdint>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>

#include "posix/kernel/file_descriptor.h"

namespace host {

/// What one file or folder is, whatever its name.
struct FileId {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  friend bool operator==(const FileId& a, const FileId& b) { return a.device == b.device && a.number == b.number; }
  friend bool operator<(const FileId& a, const FileId& b) {
    return std::tie(a.device, a.number) < std::tie(b.device, b.number);
  }
};

struct FileFacts {
  FileId id;
  unsigned mode = 0;
  std::uint64_t size = 0;
  timespec made{};
  timespec accessed{};
  timespec written{};

  bool folder() const { return S_ISDIR(mode); }
  bool file() const { return S_ISREG(mode); }
  bool owner_may_write() const { return (mode & S_IWUSR) != 0; }
};

/// Facts of an open descriptor; false with errno set when they cannot be had.
bool ReadFacts(int descriptor, FileFacts* facts);

/// A file or folder. The descriptor only pins it (O_PATH).
struct DiskEntry {
  std::string host_name;
  FileDescriptor descriptor;
  FileFacts facts;
  bool exists() const { return descriptor.get() >= 0; }
};

/// Pins what has this name on this machine. Returns 0, with an entry that does not exist when there is no such file or
/// folder, or the error.
DWORD OpenEntry(int folder, std::string host_name, DiskEntry* entry);

/// The same by the instrument's name, in any letter case. Reads the folder's names once.
DWORD FindEntry(const DiskEntry& folder, std::u16string_view name, DiskEntry* entry);

/// Calls back for every name in the folder that may be a file's or a folder's. Returns 0 or the error.
DWORD ScanFolder(int folder, const std::function<void(std::string_view host_name)>& found);

/// A path to what the descriptor has pinned, for calls of this machine that take no descriptor of that kind.
std::string PinnedPath(int descriptor);

}  // namespace host

#endif
