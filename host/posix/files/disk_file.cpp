#include "posix/files/disk_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/text/utf.h"
#include "posix/disk/attributes.h"
#include "posix/disk/host_errors.h"

namespace host {
namespace {

constexpr std::int64_t kNoPosition = -1;

// Transfers until all is done, nothing more moves or an error comes; returns the bytes moved, errno 0 without an error.
template <class Transfer, class Byte>
DWORD TransferAll(Transfer transfer, int file, Byte* bytes, DWORD count, std::int64_t position) {
  DWORD done = 0;
  errno = 0;
  while (done < count) {
    const ssize_t moved = transfer(file, bytes + done, count - done, position + done);
    if (moved < 0 && errno == EINTR) continue;
    if (moved <= 0) break;
    done += static_cast<DWORD>(moved);
    errno = 0;
  }
  return done;
}

int HostFlags(DWORD access) {
  constexpr int kAlways = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
  if ((access & GENERIC_WRITE) == 0) return kAlways | O_RDONLY;
  return kAlways | ((access & GENERIC_READ) != 0 ? O_RDWR : O_WRONLY);
}

DWORD OpenExisting(const Place& place, const std::string& name, const OpenRequest& request,
                   std::shared_ptr<DiskFile>* file) {
  const DiskEntry& entry = place.entry;
  const bool writes = (request.access & GENERIC_WRITE) != 0;
  const DWORD error = writes ? WriteProtected() : ERROR_SUCCESS;
  if (error != ERROR_SUCCESS) return error;
  auto share = TakeShare(entry.facts.id, place.folders, request.access, request.share);
  if (share == nullptr) return ERROR_SHARING_VIOLATION;
  FileDescriptor data(open(PinnedPath(entry.descriptor.get()).c_str(), HostFlags(request.access)));
  if (data.get() < 0) return HostError();
  *file = std::make_shared<DiskFile>(name, std::move(data), request.access, std::move(share));
  return ERROR_SUCCESS;
}

DWORD MakeNew(const Place& place, const std::string& name, const OpenRequest& request,
              std::shared_ptr<DiskFile>* file) {
  const int flags = HostFlags(request.access) | O_CREAT | O_EXCL | O_NOFOLLOW;
  FileDescriptor data(openat(place.folder.descriptor.get(), place.new_name.c_str(), flags, 0666));
  FileFacts facts;
  if (data.get() < 0 || !ReadFacts(data.get(), &facts)) return HostError();
  StoreWrittenTime(data.get(), InstrumentTime());
  auto share = std::make_unique<Share>(facts.id, place.folders, request.access, request.share);
  *file = std::make_shared<DiskFile>(name, std::move(data), request.access, std::move(share));
  return ERROR_SUCCESS;
}

}  // namespace

DiskFile::DiskFile(std::string name, FileDescriptor file, DWORD access, std::unique_ptr<Share> share)
    : OpenFile(std::move(name)), file_(std::move(file)), access_(access), share_(std::move(share)) {}

BOOL DiskFile::Read(void* buffer, DWORD bytes, DWORD* read) {
  if ((access_ & GENERIC_READ) == 0) return Fail(ERROR_ACCESS_DENIED, FALSE);
  const std::lock_guard<std::mutex> lock(mutex_);
  const DWORD count = TransferAll(pread, file_.get(), static_cast<char*>(buffer), bytes, position_);
  if (count < bytes && errno != 0) return Fail(HostError(), FALSE);
  position_ += count;
  *read = count;
  return TRUE;
}

BOOL DiskFile::Write(const void* buffer, DWORD bytes, DWORD* written) {
  if ((access_ & GENERIC_WRITE) == 0) return Fail(ERROR_ACCESS_DENIED, FALSE);
  if (bytes == 0) return TRUE;
  const std::lock_guard<std::mutex> lock(mutex_);
  const DWORD error = WriteAtPosition(static_cast<const char*>(buffer), bytes);
  if (error != ERROR_SUCCESS) return Fail(error, FALSE);
  MarkWritten(file_.get());
  position_ += bytes;
  *written = bytes;
  return TRUE;
}

DWORD DiskFile::WriteAtPosition(const char* bytes, DWORD count) {
  const std::uint64_t size = Size();
  const std::uint64_t end = static_cast<std::uint64_t>(position_) + count;
  const std::uint64_t growth = end - std::min(end, size);
  if (!TakeFileSpace(growth)) return ERROR_DISK_FULL;
  if (TransferAll(pwrite, file_.get(), bytes, count, position_) == count) return ERROR_SUCCESS;
  const DWORD error = errno == 0 ? ERROR_DISK_FULL : HostError();
  if (growth != 0 && ftruncate(file_.get(), static_cast<off_t>(size)) == 0) GiveFileSpace(growth);
  return error;
}

std::uint64_t DiskFile::Size() const {
  struct stat facts {};
  return fstat(file_.get(), &facts) == 0 ? static_cast<std::uint64_t>(facts.st_size) : 0;
}

std::int64_t DiskFile::Seek(std::int64_t distance, DWORD method, bool fits_32_bits) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::int64_t from = 0;
  if (method == FILE_CURRENT) {
    from = position_;
  } else if (method == FILE_END) {
    from = static_cast<std::int64_t>(Size());
  } else if (method != FILE_BEGIN) {
    return Fail(ERROR_INVALID_PARAMETER, kNoPosition);
  }
  std::int64_t position = 0;
  if (__builtin_add_overflow(from, distance, &position)) return Fail(ERROR_INVALID_PARAMETER, kNoPosition);
  if (position < 0) return Fail(ERROR_NEGATIVE_SEEK, kNoPosition);
  if (fits_32_bits && position > std::int64_t{UINT32_MAX}) return Fail(ERROR_INVALID_PARAMETER, kNoPosition);
  position_ = position;
  return position;
}

DWORD OpenAt(const Place& place, std::u16string_view path, const OpenRequest& request,
             std::shared_ptr<DiskFile>* file) {
  const std::string name = WideToUtf8(path);
  const bool anew = request.disposition == CREATE_NEW;
  return anew ? MakeNew(place, name, request, file) : OpenExisting(place, name, request, file);
}

}  // namespace host
