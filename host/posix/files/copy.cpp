#include "common/files/copy.h"

#include <unistd.h>

#include <memory>
#include <vector>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "posix/disk/attributes.h"
#include "posix/disk/host_errors.h"
#include "posix/files/disk_file.h"

namespace host {
namespace {

constexpr DWORD kChunk = 65536;

// Both ends of a copy: open, so that nobody else touches them until it is done.
struct Copy {
  Place from;
  Place to;
  std::shared_ptr<DiskFile> source;
  std::shared_ptr<DiskFile> target;
};

DWORD Empty(const DiskEntry& entry, const DiskFile& file) {
  if (ftruncate(file.descriptor(), 0) != 0) return HostError();
  GiveFileSpace(entry.facts.size);
  return ERROR_SUCCESS;
}

DWORD OpenSource(std::u16string_view path, Copy* copy) {
  const DWORD error = CheckExisting(copy->from, GENERIC_READ);
  if (error != ERROR_SUCCESS) return error;
  return OpenAt(copy->from, path, {GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING, 0}, &copy->source);
}

DWORD OpenTarget(std::u16string_view path, bool overwrite, Copy* copy) {
  const Place& to = copy->to;
  DWORD error = CheckCopyTarget(to, overwrite);
  if (error != ERROR_SUCCESS) return error;
  const bool anew = !to.entry.exists();
  error = OpenAt(to, path, {GENERIC_WRITE, 0, anew ? CREATE_NEW : OPEN_EXISTING, 0}, &copy->target);
  return error == ERROR_SUCCESS && !anew ? Empty(to.entry, *copy->target) : error;
}

DWORD OpenBoth(std::u16string_view source, std::u16string_view destination, bool overwrite, Copy* copy) {
  const auto lock = LockNames();
  DWORD error = LocateExisting(source, &copy->from);
  if (error == ERROR_SUCCESS) error = OpenSource(source, copy);
  if (error == ERROR_SUCCESS) error = Locate(destination, &copy->to);
  return error == ERROR_SUCCESS ? OpenTarget(destination, overwrite, copy) : error;
}

DWORD CopyData(DiskFile& source, DiskFile& target) {
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
DWORD CopyFacts(const DiskEntry& source, const DiskFile& target) {
  FileFacts facts;
  if (!ReadFacts(target.descriptor(), &facts)) return HostError();
  const DWORD error = StoreWrittenTime(target.descriptor(), source.facts.written);
  if (error != ERROR_SUCCESS) return error;
  return StoreAttributes(target.descriptor(), facts, AttributesOf(source) | FILE_ATTRIBUTE_ARCHIVE);
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

}  // namespace

DWORD CopyByPath(std::u16string_view source, std::u16string_view destination, bool overwrite) {
  Copy copy;
  DWORD error = OpenBoth(source, destination, overwrite, &copy);
  if (error == ERROR_SUCCESS) error = CopyData(*copy.source, *copy.target);
  if (error == ERROR_SUCCESS) error = CopyFacts(copy.from.entry, *copy.target);
  if (error != ERROR_SUCCESS && copy.target != nullptr) RemoveHalf(copy);
  return error;
}

}  // namespace host
