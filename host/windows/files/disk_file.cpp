#include "windows/files/disk_file.h"

#include <algorithm>
#include <utility>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {
namespace {

constexpr std::int64_t kNoPosition = -1;

std::int64_t MoveTo(HANDLE file, std::int64_t distance, DWORD method) {
  LARGE_INTEGER from, position;
  from.QuadPart = distance;
  return ::SetFilePointerEx(file, from, &position, method) ? position.QuadPart : kNoPosition;
}

}  // namespace

DiskFile::DiskFile(std::string name, WideString path, SystemHandle file)
    : OpenFile(std::move(name)), path_(std::move(path)), file_(std::move(file)) {}

BOOL DiskFile::Read(void* buffer, DWORD bytes, DWORD* read) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return ::ReadFile(file_.get(), buffer, bytes, read, nullptr) ? TRUE : Fail(SystemError(), FALSE);
}

BOOL DiskFile::Write(const void* buffer, DWORD bytes, DWORD* written) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::int64_t position = MoveTo(file_.get(), 0, FILE_CURRENT);
  if (position < 0) return FALSE;
  const DWORD error = WriteAt(static_cast<std::uint64_t>(position), buffer, bytes);
  if (error != ERROR_SUCCESS) {
    MoveTo(file_.get(), position, FILE_BEGIN);
    return Fail(error, FALSE);
  }
  if (bytes != 0) MarkWritten(file_.get());
  *written = bytes;
  return TRUE;
}

DWORD DiskFile::WriteAt(std::uint64_t position, const void* buffer, DWORD bytes) {
  const std::uint64_t size = Size();
  const std::uint64_t end = position + bytes;
  const std::uint64_t growth = bytes == 0 ? 0 : end - std::min(end, size);
  if (!TakeFileSpace(growth)) return ERROR_DISK_FULL;
  DWORD written = 0;
  const bool done = ::WriteFile(file_.get(), buffer, bytes, &written, nullptr) != FALSE;
  if (done && written == bytes) return ERROR_SUCCESS;
  const DWORD error = done ? ERROR_DISK_FULL : SystemError();
  CutTo(size);
  if (Size() == size) GiveFileSpace(growth);
  return error;
}

void DiskFile::CutTo(std::uint64_t size) {
  if (Size() <= size || MoveTo(file_.get(), static_cast<std::int64_t>(size), FILE_BEGIN) < 0) return;
  ::SetEndOfFile(file_.get());
}

std::uint64_t DiskFile::Size() const {
  LARGE_INTEGER size;
  return ::GetFileSizeEx(file_.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::int64_t DiskFile::Seek(std::int64_t distance, DWORD method, bool fits_32_bits) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::int64_t before = MoveTo(file_.get(), 0, FILE_CURRENT);
  const std::int64_t position = MoveTo(file_.get(), distance, method);
  if (position < 0 || !fits_32_bits || position <= std::int64_t{UINT32_MAX}) return position;
  MoveTo(file_.get(), before, FILE_BEGIN);
  return Fail(ERROR_INVALID_PARAMETER, kNoPosition);
}

DWORD OpenAt(const Place& place, WideView path, const OpenRequest& request, std::shared_ptr<DiskFile>* file) {
  const bool anew = request.disposition == CREATE_NEW;
  const WideString& real = anew ? place.new_path : place.entry.path;
  const DWORD access = anew ? request.access | FILE_WRITE_ATTRIBUTES : request.access;
  SystemHandle open(::CreateFileW(real.c_str(), access, request.share, nullptr, request.disposition,
                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!open.valid()) return SystemError();
  if (!LiesAt(open.get(), real)) return ERROR_ACCESS_DENIED;
  if (anew) MarkMade(open.get());
  WideString final_path = FinalPath(open.get());
  *file = std::make_shared<DiskFile>(WideToUtf8(path), std::move(final_path), std::move(open));
  return ERROR_SUCCESS;
}

}  // namespace host
