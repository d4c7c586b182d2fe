// Part of <windows.h>: calendar time, the clock and its time zone.
#ifndef QXHOST_WINDOWS_TIME_H
#define QXHOST_WINDOWS_TIME_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct _FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
} FILETIME, *LPFILETIME;

typedef struct _SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
} SYSTEMTIME, *PSYSTEMTIME, *LPSYSTEMTIME;

typedef struct _TIME_ZONE_INFORMATION {
  LONG Bias;
  WCHAR StandardName[32];
  SYSTEMTIME StandardDate;
  LONG StandardBias;
  WCHAR DaylightName[32];
  SYSTEMTIME DaylightDate;
  LONG DaylightBias;
} TIME_ZONE_INFORMATION, *LPTIME_ZONE_INFORMATION;

#define TIME_ZONE_ID_UNKNOWN 0u
#define TIME_ZONE_ID_STANDARD 1u
#define TIME_ZONE_ID_DAYLIGHT 2u
#define TIME_ZONE_ID_INVALID 0xFFFFFFFFu

void WINAPI GetLocalTime(LPSYSTEMTIME time);
BOOL WINAPI SetLocalTime(const SYSTEMTIME* time);
DWORD WINAPI GetTimeZoneInformation(LPTIME_ZONE_INFORMATION zone);
BOOL WINAPI SetTimeZoneInformation(const TIME_ZONE_INFORMATION* zone);
BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local);
BOOL WINAPI SystemTimeToFileTime(const SYSTEMTIME* calendar, LPFILETIME time);
BOOL WINAPI FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME calendar);

#ifdef __cplusplus
}
#endif

#endif
