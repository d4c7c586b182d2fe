// The virtual instrument's clock: the machine's, moved by an offset, or standing still. It never sets the machine's.
//
// It keeps UTC; local time is what the zone's rules make of it. Any thread.
#ifndef QXHOST_COMMON_SYSTEM_CLOCK_H
#define QXHOST_COMMON_SYSTEM_CLOCK_H

#include <windows.h>

#include <cstdint>

namespace host {

/// The clock's UTC as a file time's count: 100 ns since the beginning of 1601.
std::int64_t ClockTicks();

/// A clock that is stopped stands still until it is set or runs again; from there it then goes on.
void RunClock(bool runs);
bool ClockRuns();
/// Back to the machine's time. A clock that is stopped stays so.
void FollowMachineClock();

/// Local times before 1601 read as its first moment. A null pointer is left alone.
void GetLocalTime(LPSYSTEMTIME time);

/// Moves the clock. FALSE with last error 87 for null, for no date of the years 1601 to 30827, and for a moment that is
/// before 1601 in UTC. See UtcFromLocal for hours that come twice or not at all.
BOOL SetLocalTime(const SYSTEMTIME* time);

/// Returns which time is in force: TIME_ZONE_ID_UNKNOWN (there is no daylight time), _STANDARD or _DAYLIGHT;
/// TIME_ZONE_ID_INVALID with last error 87 for null. At start the zone is UTC, without names.
DWORD GetTimeZoneInformation(LPTIME_ZONE_INFORMATION zone);

/// UTC stays, local time changes. FALSE with last error 87, and nothing changed, for null or unusable change dates.
BOOL SetTimeZoneInformation(const TIME_ZONE_INFORMATION* zone);

/// Moves the time by the bias in force now, whatever was in force then. FALSE with last error 87 for null, a time with
/// the highest bit set, or a result that has it.
BOOL FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local);

}  // namespace host

#endif
