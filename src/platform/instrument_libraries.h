// The instrument's smaller libraries. Any thread.
#ifndef QXCM_PLATFORM_INSTRUMENT_LIBRARIES_H
#define QXCM_PLATFORM_INSTRUMENT_LIBRARIES_H

#include <cstdint>

#include "platform/windows_api.h"

extern "C" {

// ParamBlk.dll: numbered parameters of the platform, in records of 260 bytes.
struct ParameterRecord {
  std::uint8_t unused[4];
  std::uint8_t number;
  std::uint8_t length;  // of the value, in bytes
  std::uint8_t value[254];
};
/// Fills the record of the number that stands in it. 0 is failure, here and in the next call.
DECLSPEC_IMPORT BOOL WINAPI GetParameterItem(ParameterRecord* record);
/// Stores the record in place of the one with its number.
DECLSPEC_IMPORT BOOL WINAPI ReplaceParameterItem(const ParameterRecord* record);

// OPVLIB.dll: the revision of the controller's operating system, its first number in the highest byte.
DECLSPEC_IMPORT DWORD WINAPI GetProductOSRevision(void);

// BTHUTIL.dll, by ordinal: the Bluetooth radio's mode.
#define BTH_UTIL_CALL(ordinal, role, parameters) DECLSPEC_IMPORT int WINAPI BthUtil##role parameters;
#include "platform/bthutil_calls.h"
#undef BTH_UTIL_CALL

}  // extern "C"

static_assert(sizeof(ParameterRecord) == 260, "the library's record");

#endif
