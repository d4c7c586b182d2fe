// CreateFileW on files, and SetFilePointer.
#include "common/calls/errors.h"
#include "common/calls/last_error.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/open_request.h"
#include "common/files/paths.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"
#include "windows/files/open_file.h"

namespace host {
namespace {

using Opened = std::shared_ptr<OpenFile>;

DWORD CheckNew(const Place& place) {
  if (place.entry.exists()) return ERROR_FILE_EXISTS;
  return place.ends_with_separator ? ERROR_INVALID_NAME : ChangeRefused(place);
}

// Read-only files, too: Wine lets this machine's administrator write them.
DWORD CheckExisting(const Place& place, DWORD access) {
  if (!place.entry.exists()) return ERROR_FILE_NOT_FOUND;
  if (place.entry.facts.folder()) return ERROR_ACCESS_DENIED;
  if (place.ends_with_separator) return ERROR_INVALID_NAME;
  const bool readonly = (place.entry.facts.attributes & FILE_ATTRIBUTE_READONLY) != 0;
  return readonly && (access & GENERIC_WRITE) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

DWORD OpenAt(const Place& place, WideView path, const OpenRequest& request, Opened* opened) {
  const bool anew = request.disposition == CREATE_NEW;
  const DWORD error = anew ? CheckNew(place) : CheckExisting(place, request.access);
  if (error != ERROR_SUCCESS) return error;
  const WideString& real = anew ? place.new_path : place.entry.path;
  const DWORD access = anew ? request.access | FILE_WRITE_ATTRIBUTES : request.access;
  SystemHandle file(::CreateFileW(real.c_str(), access, request.share, nullptr, request.disposition,
                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!file.valid()) return SystemError();
  if (!LiesAt(file.get(), real)) return ERROR_ACCESS_DENIED;
  if (anew) MarkMade(file.get());
  WideString final_path = FinalPath(file.get());
  *opened = std::make_shared<OpenFile>(WideToUtf8(path), std::move(final_path), std::move(file));
  return ERROR_SUCCESS;
}

}  // namespace

std::shared_ptr<Stream> OpenFileByPath(LPCWSTR path, const OpenRequest& request) {
  const LastErrorBefore before;
  Opened file;
  DWORD error = CheckOpenRequest(request);
  if (error != ERROR_SUCCESS) return Fail(error, file);
  const auto lock = LockNames();
  Place place;
  error = Locate(PathText(path), &place);
  if (error == ERROR_SUCCESS) error = OpenAt(place, PathText(path), request, &file);
  return before.End(error, file, Opened());
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method) {
  const auto open = FindStream<OpenFile>(file);
  if (open == nullptr) return INVALID_SET_FILE_POINTER;
  const std::int64_t whole = SeekDistance(distance, distance_high);
  const std::int64_t position = open->Seek(whole, method, distance_high == nullptr);
  return position < 0 ? INVALID_SET_FILE_POINTER : SeekAnswer(position, distance_high);
}

}  // namespace host
