// CopyFileW and MoveFileW.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "posix/disk/attributes.h"
#include "posix/disk/host_errors.h"
#include "posix/files/open_file.h"

namespace host {
namespace {

constexpr DWORD kChunk = 65536;

// Both ends of a copy: open, so that nobody else touches them until it is done.
struct Copy {
  Place from;
  Place to;
  std::shared_ptr<OpenFile> source;
  std::shared_ptr<OpenFile> target;
};

DWORD Empty(const DiskEntry& entry, const OpenFile& file) {
  if (ftruncate(file.descriptor(), 0) != 0) return HostError();
  GiveFileSpace(entry.facts.size);
  return ERROR_SUCCESS;
}

// What CopyFileW overwrites must be plain: neither read-only nor hidden nor a system file.
bool MayBeOverwritten(const DiskEntry& entry) {
  const DWORD attributes = ReadAttributes(entry);
  return (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) == 0;
}

DWORD OpenTarget(std::u16string_view path, bool overwrite, Copy* copy) {
  const Place& to = copy->to;
  if (!to.entry.exists()) return OpenAt(to, path, {GENERIC_WRITE, 0, CREATE_NEW}, &copy->target);
  if (!overwrite) return ERROR_FILE_EXISTS;
  if (to.entry.facts.file() && !MayBeOverwritten(to.entry)) return ERROR_ACCESS_DENIED;
  const DWORD error = OpenAt(to, path, {GENERIC_WRITE, 0, OPEN_EXISTING}, &copy->target);
  return error == ERROR_SUCCESS ? Empty(to.entry, *copy->target) : error;
}

DWORD OpenBoth(std::u16string_view source, std::u16string_view destination, bool overwrite, Copy* copy) {
  const auto lock = LockNames();
  DWORD error = LocateExisting(source, &copy->from);
  if (error == ERROR_SUCCESS) {
    error = OpenAt(copy->from, source, {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING}, &copy->source);
  }
  if (error == ERROR_SUCCESS) error = Locate(destination, &copy->to);
  return error == ERROR_SUCCESS ? OpenTarget(destination, overwrite, copy) : error;
}

DWORD CopyData(OpenFile& source, OpenFile& target) {
  std::vector<char> chunk(kChunk);
  for (;;) {
    DWORD read = 0;
    DWORD written = 0;
    if (!source.Read(chunk.data(), kChunk, &read)) return GetLastError();
    if (read == 0) return ERROR_SUCCESS;
    if (!target.Write(chunk.data(), read, &written)) return GetLastError();
  }
}

// Time first: storing the attributes may close the file to further changes.
DWORD CopyFacts(const DiskEntry& source, const OpenFile& target) {
  FileFacts facts;
  if (!ReadFacts(target.descriptor(), &facts)) return HostError();
  const DWORD error = StoreWrittenTime(target.descriptor(), source.facts.written);
  if (error != ERROR_SUCCESS) return error;
  return StoreAttributes(target.descriptor(), facts, ReadAttributes(source) | FILE_ATTRIBUTE_ARCHIVE);
}

// Removes the target unless its name means something else by now.
void RemoveHalf(const Copy& copy) {
  const auto lock = LockNames();
  const std::string& name = copy.to.entry.exists() ? copy.to.entry.host_name : copy.to.new_name;
  const int folder = copy.to.folder.descriptor.get();
  DiskEntry there;
  if (OpenEntry(folder, name, &there) != ERROR_SUCCESS || !there.exists()) return;
  if (!(there.facts.id == copy.target->id())) return;
  if (unlinkat(folder, name.c_str(), 0) == 0) GiveFileSpace(there.facts.size);
}

DWORD CopyByPath(LPCWSTR source, LPCWSTR destination, bool overwrite) {
  Copy copy;
  DWORD error = OpenBoth(PathText(source), PathText(destination), overwrite, &copy);
  if (error == ERROR_SUCCESS) error = CopyData(*copy.source, *copy.target);
  if (error == ERROR_SUCCESS) error = CopyFacts(copy.from.entry, *copy.target);
  if (error != ERROR_SUCCESS && copy.target != nullptr) RemoveHalf(copy);
  return error;
}

bool SameEntry(const Place& one, const Place& other) {
  return one.folder.facts.id == other.folder.facts.id && one.entry.host_name == other.entry.host_name;
}

DWORD CheckMove(const Place& from, const Place& to) {
  const FileId& id = from.entry.facts.id;
  if (from.root()) return ERROR_ACCESS_DENIED;
  if (from.entry.facts.file() && IsOpen(id)) return ERROR_SHARING_VIOLATION;
  if (from.entry.facts.folder() && HoldsOpenFiles(id)) return ERROR_ACCESS_DENIED;
  if (to.entry.exists() && !SameEntry(from, to)) return ERROR_ALREADY_EXISTS;
  if (from.entry.facts.file() && to.ends_with_separator) return ERROR_INVALID_NAME;
  const bool into_itself = std::find(to.folders.begin(), to.folders.end(), id) != to.folders.end();
  if (into_itself) return ERROR_SHARING_VIOLATION;
  const DWORD error = ChangeRefused(from);
  return error == ERROR_SUCCESS ? ChangeRefused(to) : error;
}

// Not every file system of this machine can refuse to overwrite; the look before has to do there.
DWORD Rename(const Place& from, const Place& to) {
  const int old_folder = from.folder.descriptor.get(), new_folder = to.folder.descriptor.get();
  const char* old_name = from.entry.host_name.c_str();
  const char* new_name = to.new_name.c_str();
  if (renameat2(old_folder, old_name, new_folder, new_name, RENAME_NOREPLACE) == 0) return ERROR_SUCCESS;
  if (errno != EINVAL && errno != ENOSYS) return HostError();
  struct stat there {};
  if (fstatat(new_folder, new_name, &there, AT_SYMLINK_NOFOLLOW) == 0) return ERROR_ACCESS_DENIED;
  return renameat(old_folder, old_name, new_folder, new_name) == 0 ? ERROR_SUCCESS : HostError();
}

DWORD MoveByPath(LPCWSTR source, LPCWSTR destination) {
  const auto lock = LockNames();
  Place from, to;
  DWORD error = LocateExisting(PathText(source), &from);
  if (error == ERROR_SUCCESS) error = Locate(PathText(destination), &to);
  if (error == ERROR_SUCCESS) error = CheckMove(from, to);
  if (error != ERROR_SUCCESS) return error;
  const bool same_name = to.entry.exists() && to.new_name == from.entry.host_name;
  return same_name ? ERROR_SUCCESS : Rename(from, to);
}

}  // namespace

BOOL CopyFileW(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists) {
  return Done(CopyByPath(source, destination, fail_if_exists == FALSE));
}

BOOL MoveFileW(LPCWSTR source, LPCWSTR destination) { return Done(MoveByPath(source, destination)); }

}  // namespace host
