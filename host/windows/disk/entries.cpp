#include "windows/disk/entries.h"

#include <winternl.h>

#include <vector>

#include "common/system/calendar.h"

namespace host {
namespace {

constexpr DWORD kUsualPath = 512;
constexpr std::size_t kLongestPath = 32768;

// Those by which the system says that nothing is there.
bool IsMissing(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_CANT_RESOLVE_FILENAME;
}

bool SamePath(WideView one, WideView other) {
  return ::CompareStringOrdinal(one.data(), static_cast<int>(one.size()), other.data(), static_cast<int>(other.size()),
                                TRUE) == CSTR_EQUAL;
}

// Wine gives no final path of more than MAX_PATH units, but the object's name that it would make it of.
WideString NameOfObject(HANDLE open) {
  constexpr auto kObjectName = static_cast<OBJECT_INFORMATION_CLASS>(1);
  constexpr WideView kFront = TEXT("\\??\\");
  std::vector<BYTE> room(kLongestPath * sizeof(WCHAR));
  if (::NtQueryObject(open, kObjectName, room.data(), static_cast<ULONG>(room.size()), nullptr) != 0) return {};
  const auto* name = reinterpret_cast<const UNICODE_STRING*>(room.data());
  const WideView text(name->Buffer, name->Length / sizeof(WCHAR));
  if (text.substr(0, kFront.size()) != kFront) return {};
  return TEXT("\\\\?\\") + WideString(text.substr(kFront.size()));
}

DWORD Find(const WideString& path, DWORD access, DWORD share, Entry* entry) {
  SystemHandle pin(::CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING,
                                 FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!pin.valid()) return IsMissing(::GetLastError()) ? ERROR_SUCCESS : SystemError();
  entry->taken = !LiesAt(pin.get(), path, &entry->facts, &entry->path);
  if (!entry->taken) entry->pin = std::move(pin);
  return ERROR_SUCCESS;
}

}  // namespace

bool ReadFacts(HANDLE open, FileFacts* facts) {
  FILE_BASIC_INFO basic;
  FILE_STANDARD_INFO standard;
  if (!::GetFileInformationByHandleEx(open, FileBasicInfo, &basic, sizeof basic)) return false;
  if (!::GetFileInformationByHandleEx(open, FileStandardInfo, &standard, sizeof standard)) return false;
  *facts = {basic.FileAttributes, static_cast<std::uint64_t>(standard.EndOfFile.QuadPart),
            FileTimeOf(basic.CreationTime.QuadPart), FileTimeOf(basic.LastAccessTime.QuadPart),
            FileTimeOf(basic.LastWriteTime.QuadPart)};
  return true;
}

WideString FinalPath(HANDLE open) {
  WideString path(kUsualPath, TEXT('\0'));
  DWORD size = ::GetFinalPathNameByHandleW(open, path.data(), kUsualPath, FILE_NAME_NORMALIZED);
  if (size == 0) return NameOfObject(open);
  if (size > kUsualPath) {
    path.resize(size);
    size = ::GetFinalPathNameByHandleW(open, path.data(), size, FILE_NAME_NORMALIZED);
  }
  path.resize(size);
  return path;
}

bool LiesAt(HANDLE open, WideView path, FileFacts* facts, WideString* final_path) {
  if (::GetFileType(open) != FILE_TYPE_DISK || !ReadFacts(open, facts)) return false;
  *final_path = FinalPath(open);
  return (facts->attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && SamePath(*final_path, path);
}

bool LiesAt(HANDLE open, WideView path) {
  FileFacts facts;
  WideString final_path;
  return LiesAt(open, path, &facts, &final_path);
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
