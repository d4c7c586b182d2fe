#include "posix/disk/attributes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string>

#include "common/system/calendar.h"
#include "common/system/clock.h"
#include "posix/disk/host_errors.h"

namespace host {
namespace {

constexpr const char* kKeptAs = "user.qx.attributes";

struct Letter {
  char letter;
  DWORD attribute;
};

constexpr Letter kLetters[] = {{'r', FILE_ATTRIBUTE_READONLY},
                               {'h', FILE_ATTRIBUTE_HIDDEN},
                               {'s', FILE_ATTRIBUTE_SYSTEM},
                               {'a', FILE_ATTRIBUTE_ARCHIVE}};

constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr std::int64_t kUnitsPerSecond = 10000000;
constexpr std::int64_t kNanosecondsPerUnit = 100;

std::optional<DWORD> ReadKept(int descriptor) {
  char letters[16];
  const ssize_t length = getxattr(PinnedPath(descriptor).c_str(), kKeptAs, letters, sizeof letters);
  if (length < 0) return std::nullopt;
  DWORD attributes = 0;
  for (const Letter& row : kLetters) {
    if (std::string_view(letters, static_cast<std::size_t>(length)).find(row.letter) != std::string_view::npos) {
      attributes |= row.attribute;
    }
  }
  return attributes;
}

bool WriteKept(int descriptor, DWORD attributes, DWORD without) {
  const std::string path = PinnedPath(descriptor);
  if (attributes == without) return removexattr(path.c_str(), kKeptAs) == 0 || errno == ENODATA || errno == ENOTSUP;
  std::string letters;
  for (const Letter& row : kLetters) {
    if ((attributes & row.attribute) != 0) letters += row.letter;
  }
  return setxattr(path.c_str(), kKeptAs, letters.data(), letters.size(), 0) == 0;
}

// What an entry without kept attributes has.
DWORD DefaultOf(const FileFacts& facts) { return facts.folder() ? 0 : FILE_ATTRIBUTE_ARCHIVE; }

bool ChangeMode(int descriptor, unsigned mode) { return chmod(PinnedPath(descriptor).c_str(), mode & 07777) == 0; }

unsigned ModeFor(const FileFacts& facts, DWORD attributes) {
  if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return facts.mode & ~0222u;
  return facts.mode | S_IWUSR;
}

// A file's own attributes can be kept with it only while it may be written.
DWORD StoreOnFile(int descriptor, const FileFacts& facts, DWORD attributes) {
  const DWORD kept = attributes & ~FILE_ATTRIBUTE_READONLY;
  const bool opened_up = !facts.owner_may_write() && ChangeMode(descriptor, facts.mode | S_IWUSR);
  if (WriteKept(descriptor, kept, DefaultOf(facts)) && ChangeMode(descriptor, ModeFor(facts, attributes))) {
    return ERROR_SUCCESS;
  }
  const DWORD error = HostError();
  if (opened_up) ChangeMode(descriptor, facts.mode);
  return error;
}

}  // namespace

DWORD AttributesOf(const DiskEntry& entry) {
  const FileFacts& facts = entry.facts;
  DWORD attributes = ReadKept(entry.descriptor.get()).value_or(DefaultOf(facts));
  if (facts.folder()) return attributes | FILE_ATTRIBUTE_DIRECTORY;
  attributes &= ~FILE_ATTRIBUTE_READONLY;
  if (!facts.owner_may_write()) attributes |= FILE_ATTRIBUTE_READONLY;
  return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

FileTimes TimesOf(const DiskEntry& entry) {
  const FileFacts& facts = entry.facts;
  return {ToFileTime(facts.made), ToFileTime(facts.accessed), ToFileTime(facts.written)};
}

DWORD StoreAttributes(const DiskEntry& entry, DWORD attributes) {
  return StoreAttributes(entry.descriptor.get(), entry.facts, attributes);
}

DWORD StoreAttributes(int descriptor, const FileFacts& facts, DWORD attributes) {
  attributes &= kSettableAttributes;
  if (!facts.folder()) return StoreOnFile(descriptor, facts, attributes);
  return WriteKept(descriptor, attributes, DefaultOf(facts)) ? ERROR_SUCCESS : HostError();
}

void MarkWritten(int descriptor) {
  const std::optional<DWORD> kept = ReadKept(descriptor);
  if (kept && (*kept & FILE_ATTRIBUTE_ARCHIVE) == 0) {
    WriteKept(descriptor, *kept | FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_ARCHIVE);
  }
  StoreWrittenTime(descriptor, InstrumentTime());
}

timespec InstrumentTime() { return FromFileTime(FileTimeOf(ClockTicks())); }

DWORD StoreWrittenTime(int descriptor, const timespec& written) {
  const timespec times[2] = {{0, UTIME_OMIT}, written};
  return utimensat(AT_FDCWD, PinnedPath(descriptor).c_str(), times, 0) == 0 ? ERROR_SUCCESS : HostError();
}

DWORD StoreWrittenTime(const DiskEntry& entry, const FILETIME& written) {
  return StoreWrittenTime(entry.descriptor.get(), FromFileTime(written));
}

FILETIME ToFileTime(const timespec& time) {
  const std::int64_t seconds = std::int64_t{time.tv_sec} + kSecondsFrom1601To1970;
  const auto units = static_cast<std::uint64_t>(seconds * kUnitsPerSecond + time.tv_nsec / kNanosecondsPerUnit);
  return {static_cast<DWORD>(units & 0xFFFFFFFF), static_cast<DWORD>(units >> 32)};
}

timespec FromFileTime(const FILETIME& time) {
  const auto units = static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
  timespec result{};
  result.tv_sec = static_cast<time_t>(units / kUnitsPerSecond - kSecondsFrom1601To1970);
  result.tv_nsec = static_cast<long>(units % kUnitsPerSecond * kNanosecondsPerUnit);
  return result;
}

}  // namespace host
