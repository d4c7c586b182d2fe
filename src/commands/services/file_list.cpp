// GT_FLS: what a folder holds, one reply an entry.
//   C<GT_FLS,PTH=/Temp/*.*>  ->  R<FLS,CNT=1/2,ATR=10,FNM=a.txt,SIZ=120,DTE=20240131,TIM=093005>,
//                                R<FLS,CNT=2/2,ATR=08,FNM=Jobs,SIZ=0,DTE=20240131,TIM=093005>, ACK
//   C<GT_FLS,PTH=/Temp/*.x>  ->  R<FLS,CNT=0>, ACK
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "commands/services/file_status.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kPath = "PTH";
constexpr std::size_t kEntryBuffer = 324;  // a longer entry is cut
constexpr std::size_t kCountBuffer = 64;

/// The platform's search, ended when it goes.
class Search {
 public:
  Search(LPCWSTR pattern, WIN32_FIND_DATAW* found) : search_(FindFirstFileW(pattern, found)) {}
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;
  ~Search() {
    if (found_any()) FindClose(search_);
  }

  bool found_any() const { return search_ != INVALID_HANDLE_VALUE; }
  bool Next(WIN32_FIND_DATAW* found) { return FindNextFileW(search_, found) != FALSE; }

 private:
  HANDLE search_;
};

/// The platform's attribute bits in one byte: read-only, hidden, system stay; folder and archive move down by one.
unsigned Folded(DWORD attributes) {
  constexpr DWORD kLow = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  constexpr DWORD kHigh = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_ARCHIVE;
  return (attributes & kLow) | (attributes & kHigh) >> 1;
}

SYSTEMTIME LocalCalendarTime(const FILETIME& time) {
  FILETIME local = {};
  SYSTEMTIME calendar = {};
  if (FileTimeToLocalFileTime(&time, &local)) FileTimeToSystemTime(&local, &calendar);
  return calendar;
}

std::string EntryText(const WIN32_FIND_DATAW& entry) {
  const SYSTEMTIME time = LocalCalendarTime(entry.ftLastWriteTime);
  const std::string name = NarrowText(entry.cFileName);
  char text[kEntryBuffer];
  std::snprintf(text, sizeof text, ",ATR=%02X,FNM=%s,SIZ=%u,DTE=%04d%02d%02d,TIM=%02d%02d%02d",
                Folded(entry.dwFileAttributes), name.c_str(), static_cast<unsigned>(entry.nFileSizeLow), time.wYear,
                time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond);
  return text;
}

/// Every entry, in the order found. A service that closes ends the list early: nobody waits for it.
std::vector<std::string> Entries(const WideText& pattern, const CommandProcessor& processor) {
  std::vector<std::string> entries;
  WIN32_FIND_DATAW found = {};
  Search search(pattern.c_str(), &found);
  for (bool more = search.found_any(); more && !processor.stopping(); more = search.Next(&found)) {
    entries.push_back(EntryText(found));
  }
  return entries;
}

}  // namespace

std::int32_t GtFls(CommandProcessor& processor, const FieldMap& fields) {
  const auto* path = fields.Find(kPath);
  if (path == nullptr) return kBadParameter;
  const std::vector<std::string> entries = Entries(ToDevicePath(*path), processor);
  if (entries.empty() && !processor.stopping()) processor.service().SendReply("FLS,CNT=0");
  int index = 0;
  for (const std::string& entry : entries) {
    if (!processor.WaitForRoom()) break;
    char count[kCountBuffer];
    std::snprintf(count, sizeof count, "FLS,CNT=%d/%d", ++index, static_cast<int>(entries.size()));
    processor.service().SendReply(count + entry);
  }
  return kDone;
}

}  // namespace qxcm
