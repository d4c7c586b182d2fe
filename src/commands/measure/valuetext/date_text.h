// Dates (YYYYMMDD) and times of day (HHMMSS) as the clock and constants commands carry them.
// Pure functions: any thread, no heap, no exception. Whether such a day exists is for the platform to say.
#ifndef QXCM_COMMANDS_MEASURE_VALUETEXT_DATE_TEXT_H
#define QXCM_COMMANDS_MEASURE_VALUETEXT_DATE_TEXT_H

#include <string_view>

#include "platform/windows_api.h"

namespace qxcm {

/// Reads a date into year, month and day of `record` (day of the week 0); its time of day stays. Fewer digits are the
/// lower ones: "115" is year 0, month 1, day 15; an empty text is all zeros. False leaves the record alone: a character
/// that is no digit, or a number above 2147483647.
bool ParseDate(std::string_view text, SYSTEMTIME* record);

/// Reads a time of day into hour, minute and second of `record` (milliseconds 0) in the same way; its date stays.
bool ParseTime(std::string_view text, SYSTEMTIME* record);

}  // namespace qxcm

#endif
