// The instrument's smaller libraries as the library calls them: ParamBlk.dll and OPVLIB.dll. Any thread.
#ifndef QXHOST_INSTRUMENT_INSTRUMENT_LIBRARIES_H
#define QXHOST_INSTRUMENT_INSTRUMENT_LIBRARIES_H

#include <windows.h>

#include <cstdint>

extern "C" {

/// A numbered parameter of the platform.
struct ParameterRecord {
  std::uint8_t unused[4];
  std::uint8_t number;
  std::uint8_t length;  // of the value, in bytes
  std::uint8_t value[254];
};

/// Fills in length and value of the number that stands in the record. FALSE, with the record as it was, for null and
/// for a number without an entry.
BOOL WINAPI GetParameterItem(ParameterRecord* record);
/// Stores the record in place of the entry with its number. FALSE, with nothing changed, for null, for a number without
/// an entry, for a length above 254 and when the change cannot be kept.
BOOL WINAPI ReplaceParameterItem(const ParameterRecord* record);

/// The revision of the controller's operating system, its first number in the highest byte.
DWORD WINAPI GetProductOSRevision(void);

}  // extern "C"

static_assert(sizeof(ParameterRecord) == 260, "the library's record");

#endif
