#include "qxsim/api/time_text.h"

#include <ctime>

#include "posix/disk/attributes.h"
#include "qxsim/api/http_types.h"

namespace qxsim {
namespace {

constexpr const char* kFormat = "%Y-%m-%dT%H:%M:%SZ";
constexpr int kFirstYear = 1980;
constexpr int kLastYear = 2107;

std::string Format(const std::tm& calendar) {
  char text[40];
  return {text, std::strftime(text, sizeof text, kFormat, &calendar)};
}

}  // namespace

std::string TimeText(const FILETIME& time) {
  const std::time_t seconds = host::FromFileTime(time).tv_sec;
  std::tm calendar{};
  gmtime_r(&seconds, &calendar);
  return Format(calendar);
}

FILETIME TimeFrom(const std::string& text) {
  std::tm calendar{};
  const char* end = strptime(text.c_str(), kFormat, &calendar);
  timespec time{};
  time.tv_sec = timegm(&calendar);
  const int year = calendar.tm_year + 1900;
  const FILETIME result = host::ToFileTime(time);
  // Written back it must be the same text: no 31 February, no blanks, nothing behind.
  const bool good = end != nullptr && year >= kFirstYear && year <= kLastYear && TimeText(result) == text;
  if (!good) throw ApiError(kBadRequest, "written: a time like 2024-01-31T09:30:05Z is expected, 1980 to 2107");
  return result;
}

}  // namespace qxsim
