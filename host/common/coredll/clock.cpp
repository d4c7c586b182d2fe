// COREDLL: the clock, its time zone and calendar time, as the library calls them.
#include "common/system/clock.h"

#include <windows.h>

#include "common/calls/coredll_call.h"
#include "common/system/calendar.h"

using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::kUnlisted;

extern "C" {

void COREDLL(GetLocalTime)(LPSYSTEMTIME time) { CoreDllCall("GetLocalTime", kUnlisted, host::GetLocalTime, time); }

BOOL COREDLL(SetLocalTime)(const SYSTEMTIME* time) {
  return CoreDllCall("SetLocalTime", kListed, host::SetLocalTime, time);
}

DWORD COREDLL(GetTimeZoneInformation)(LPTIME_ZONE_INFORMATION zone) {
  return CoreDllCall("GetTimeZoneInformation", kUnlisted, FailsWith::kMinusOne, host::GetTimeZoneInformation, zone);
}

BOOL COREDLL(SetTimeZoneInformation)(const TIME_ZONE_INFORMATION* zone) {
  return CoreDllCall("SetTimeZoneInformation", kListed, host::SetTimeZoneInformation, zone);
}

BOOL COREDLL(FileTimeToLocalFileTime)(const FILETIME* time, LPFILETIME local) {
  return CoreDllCall("FileTimeToLocalFileTime", kUnlisted, host::FileTimeToLocalFileTime, time, local);
}

BOOL COREDLL(FileTimeToSystemTime)(const FILETIME* time, LPSYSTEMTIME calendar) {
  return CoreDllCall("FileTimeToSystemTime", kUnlisted, host::FileTimeToSystemTime, time, calendar);
}

BOOL COREDLL(SystemTimeToFileTime)(const SYSTEMTIME* calendar, LPFILETIME time) {
  return CoreDllCall("SystemTimeToFileTime", kUnlisted, host::SystemTimeToFileTime, calendar, time);
}

}  // extern "C"
