// Date and time text.
#include "commands/measure/valuetext/date_text.h"

#include <cstdint>
#include <limits>

#include "commands/measure/valuetext/number_text.h"

namespace qxcm {

namespace {

// Three decimal fields in one number: two digits each in the lower two, the rest in the upper one.
struct Fields {
  WORD upper;
  WORD middle;
  WORD lower;
};

bool ReadFields(std::string_view text, Fields* fields) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  const std::int64_t value = ParseDigits(text, kMax + 1);
  if (!IsDigits(text) || value > kMax) return false;
  fields->upper = static_cast<WORD>(value / 10000);  // above 65535 its low 16 bits: kept
  fields->middle = static_cast<WORD>(value / 100 % 100);
  fields->lower = static_cast<WORD>(value % 100);
  return true;
}

}  // namespace

bool ParseDate(std::string_view text, SYSTEMTIME* record) {
  Fields fields;
  if (!ReadFields(text, &fields)) return false;
  record->wYear = fields.upper;
  record->wMonth = fields.middle;
  record->wDay = fields.lower;
  record->wDayOfWeek = 0;
  return true;
}

bool ParseTime(std::string_view text, SYSTEMTIME* record) {
  Fields fields;
  if (!ReadFields(text, &fields)) return false;
  record->wHour = fields.upper;
  record->wMinute = fields.middle;
  record->wSecond = fields.lower;
  record->wMilliseconds = 0;
  return true;
}

}  // namespace qxcm
