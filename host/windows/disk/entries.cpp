#include "windows/disk/entries.h"

namespace host {
namespace {

// Those by which the system says that nothing is there.
bool IsMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_CANT_RESOLVE_FILENAME;
}

std::uint64_t Whole(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

bool SamePath(WideView one, WideView other) {
  return ::CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(), static_cast<int>(other.size()),
                                TRUE) == CSTR_EQUAL;
}

DWORD Find(const WideString& path, DWORD access, DWORD share, Entry* entry) {
  SystemHandle pin(::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!pin.valid()) return IsMissing(::GetLastError()) ? ERROR_SUCCESS : SystemError();
  entry->taken = !LiesAt(pin.get(), path);
  if (entry->taken) return ERROR_SUCCESS;
  if (!ReadFacts(pin.get(), &entry->facts)) return SystemError();
  entry->path = FinalPath(pin.get());
  entry->pin = std::move(pin);
  return ERROR_SUCCESS;
}

}  // namespace

bool ReadFacts(HANDLE open, FileFacts* facts) {
  BY_HANDLE_FILE_INFORMATION all;
  if (!::GetFileInformationByHandle(open, &all)) return false;
  *facts = {all.dwFileAttributes, Whole(all.nFileSizeHigh, all.nFileSizeLow), all.ftCreationTime, all.ftLastAccessTime,
            all.ftLastWriteTime};
  return true;
}

WideString FinalPath(HANDLE open) {
  WideString path(::GetFinalPathNameByHandleW(open, nullptr, 0, FILE_NAME_NORMALIZED), TEXT('\0'));
  if (!path.empty()) {
    path.resize(::GetFinalPathNameByHandleW(open, path.data(), static_cast<DWORD>(path.size()), FILE_NAME_NORMALIZED));
  }
  return path;
}

bool LiesAt(HANDLE open, WideView path) {
  FileFacts facts;
  if (::GetFileType(open) != FILE_TYPE_DISK || !ReadFacts(open, &facts)) return false;
  return (facts.attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && SamePath(FinalPath(open), path);
}

DWORD FindEntry(const WideString& path, Entry* entry) {
  return Find(path, FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, entry);
}

DWORD FindFolder(const WideString& path, Entry* folder) {
  return Find(path, FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, folder);
}

DWORD SystemError() {
  const DWORD error = ::GetLastError();
  switch (error) {
    case ERROR_FILE_EXISTS:  // the name is taken by what is no file of the instrument
    case ERROR_ALREADY_EXISTS:
      return ERROR_ACCESS_DENIED;
    case ERROR_HANDLE_DISK_FULL:
      return ERROR_DISK_FULL;
    case ERROR_LOCK_VIOLATION:
      return ERROR_SHARING_VIOLATION;
    default:
      return error;
  }
}

}  // namespace host
