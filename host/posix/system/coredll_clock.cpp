// COREDLL: the clock, its time zone and calendar time, as the library calls them.
#include <windows.h>

#include "posix/calls/coredll_call.h"
#include "posix/system/calendar.h"
#include "posix/system/clock.h"

using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::kUnlisted;

extern "C" {

void GetLocalTime(LPSYSTEMTIME time) { CoreDllCall("GetLocalTime", kUnlisted, host::GetLocalTime, time); }

BOOL SetLocalTime(const SYSTEMTIME* time) { return CoreDllCall("SetLocalTime", kListed, host::SetLocalTime, time); }

DWORD GetTimeZoneInformation(LPTIME_ZONE_INFORMATION zone) {
  return CoreDllCall("GetTimeZoneInformation", kUnlisted, FailsWith::kMinusOne, host::GetTimeZoneInformation, zone);
}

BOOL SetTimeZoneInformation(const TIME_ZONE_INFORMATION* zone) {
  return CoreDllCall("SetTimeZoneInformation", kListed, host::SetTimeZoneInformation, zone);
}

BOOL FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local) {
  return CoreDllCall("FileTimeToLocalFileTime", kUnlisted, host::FileTimeToLocalFileTime, time, local);
}

BOOL FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME calendar) {
  return CoreDllCall("FileTimeToSystemTime", kUnlisted, host::FileTimeToSystemTime, time, calendar);
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* calendar, LPFILETIME time) {
  return CoreDllCall("SystemTimeToFileTime", kUnlisted, host::SystemTimeToFileTime, calendar, time);
}

}  // extern "C"
