// The date of the last inspection: digits on the wire, days in the store.
// Pure functions: any thread, no exception.
#ifndef QXCM_COMMANDS_INSTRUMENT_INSPECTION_DATE_H
#define QXCM_COMMANDS_INSTRUMENT_INSPECTION_DATE_H

#include <optional>
#include <string>
#include <string_view>

namespace qxcm {

/// Reads 8 digits (YYYYMMDD) or 14 (with HHMMSS) as days since midnight of 30 December 1899; nothing for another
/// length, another character, a date or time that does not exist, or a date outside 100 to 9999.
std::optional<double> ParseInspectionDate(std::string_view text);

/// Days as 14 digits; nothing for what is no date from 1601 on.
std::optional<std::string> FormatInspectionDate(double days);

}  // namespace qxcm

#endif
