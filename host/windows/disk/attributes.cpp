#include "windows/disk/attributes.h"

#include "common/system/calendar.h"
#include "common/system/clock.h"

namespace host {
namespace {

// Zero times mean "as they are".
bool SetAttributes(HANDLE open, DWORD attributes) {
  FILE_BASIC_INFO info = {};
  info.FileAttributes = attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
  return ::SetFileInformationByHandle(open, FileBasicInfo, &info, sizeof info) != FALSE;
}

DWORD Settable(const FileFacts& facts) { return facts.attributes & kSettableAttributes; }

// All of them or none.
DWORD KeepAttributes(HANDLE open, DWORD attributes) {
  FileFacts before, after;
  if (!ReadFacts(open, &before) || !SetAttributes(open, attributes) || !ReadFacts(open, &after)) return SystemError();
  if (Settable(after) == attributes) return ERROR_SUCCESS;
  SetAttributes(open, Settable(before));
  return ERROR_NOT_SUPPORTED;
}

bool SetWrittenTime(HANDLE open, const FILETIME& written) {
  return ::SetFileTime(open, nullptr, nullptr, &written) != FALSE;
}

}  // namespace

DWORD AttributesOf(const DiskEntry& entry) {
  const DWORD attributes = entry.facts.attributes & (kSettableAttributes | FILE_ATTRIBUTE_DIRECTORY);
  return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

FileTimes TimesOf(const DiskEntry& entry) { return {entry.facts.made, entry.facts.accessed, entry.facts.written}; }

SystemHandle OpenForFacts(const WideString& path) {
  SystemHandle open(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
  if (!open.valid() || LiesAt(open.get(), path)) return open;
  SetLastError(ERROR_FILE_NOT_FOUND);
  return SystemHandle();
}

DWORD StoreAttributes(const DiskEntry& entry, DWORD attributes) {
  const SystemHandle open = OpenForFacts(entry.path);
  return open.valid() ? KeepAttributes(open.get(), attributes & kSettableAttributes) : SystemError();
}

DWORD StoreWrittenTime(const DiskEntry& entry, const FILETIME& written) {
  const SystemHandle open = OpenForFacts(entry.path);
  return open.valid() && SetWrittenTime(open.get(), written) ? ERROR_SUCCESS : SystemError();
}

void MarkMade(HANDLE open) {
  const FILETIME now = FileTimeOf(ClockTicks());
  ::SetFileTime(open, &now, &now, &now);
}

void MarkWritten(HANDLE open) { SetWrittenTime(open, FileTimeOf(ClockTicks())); }

}  // namespace host
