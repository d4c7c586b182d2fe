#include "common/system/clock.h"

#include <ctime>
#include <mutex>

#include "common/calls/errors.h"
#include "common/system/calendar.h"
#include "common/system/zone_rules.h"

namespace host {
namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kTicksTo1970 = 116444736000000000;
constexpr std::int64_t kLastMs = INT64_MAX / kTicksPerMs;

std::int64_t MachineTicks() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec * kTicksPerSecond + now.tv_nsec / 100 + kTicksTo1970;
}

struct Clock {
  std::mutex mutex;
  bool runs = true;             // guarded by mutex, as all below
  std::int64_t offset = 0;      // to the machine's clock, while it runs
  std::int64_t stopped_at = 0;  // its time, while it does not
  TIME_ZONE_INFORMATION zone = {};

  std::int64_t Ticks() const { return runs ? MachineTicks() + offset : stopped_at; }
  void Set(std::int64_t ticks) {
    stopped_at = ticks;
    offset = ticks - MachineTicks();
  }
  ZoneTime InForce() const { return ZoneTimeAt(zone, Ticks() / kTicksPerMs); }
};

Clock& TheClock() {
  static auto* clock = new Clock;  // threads may outlive the end of main
  return *clock;
}

}  // namespace

std::int64_t ClockTicks() {
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  return clock.Ticks();
}

void RunClock(bool runs) {
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  if (clock.runs == runs) return;
  clock.Set(clock.Ticks());
  clock.runs = runs;
}

bool ClockRuns() {
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  return clock.runs;
}

void FollowMachineClock() {
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  clock.stopped_at = MachineTicks();
  clock.offset = 0;
}

void GetLocalTime(LPSYSTEMTIME time) {
  if (time == nullptr) return;
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  const std::int64_t local = LocalFromUtc(clock.zone, clock.Ticks() / kTicksPerMs);
  *time = CalendarOfMs(local < 0 ? 0 : local > kLastMs ? kLastMs : local);
}

BOOL SetLocalTime(const SYSTEMTIME* time) {
  if (time == nullptr || !IsCalendarTime(*time)) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  const std::int64_t utc = UtcFromLocal(clock.zone, MsOfCalendar(*time), clock.InForce().bias);
  if (utc < 0 || utc > kLastMs) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  clock.Set(utc * kTicksPerMs);
  return TRUE;
}

DWORD GetTimeZoneInformation(LPTIME_ZONE_INFORMATION zone) {
  if (zone == nullptr) return Fail(ERROR_INVALID_PARAMETER, TIME_ZONE_ID_INVALID);
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  *zone = clock.zone;
  return clock.InForce().id;
}

BOOL SetTimeZoneInformation(const TIME_ZONE_INFORMATION* zone) {
  if (zone == nullptr || !IsZone(*zone)) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  clock.zone = *zone;
  return TRUE;
}

BOOL FileTimeToLocalFileTime(const FILETIME* time, LPFILETIME local) {
  const bool good = time != nullptr && local != nullptr && TicksOf(*time) >= 0;
  if (!good) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  Clock& clock = TheClock();
  const std::lock_guard<std::mutex> lock(clock.mutex);
  const std::int64_t bias = clock.InForce().bias * kMsPerMinute * kTicksPerMs;
  std::int64_t moved = 0;
  if (__builtin_sub_overflow(TicksOf(*time), bias, &moved) || moved < 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  *local = FileTimeOf(moved);
  return TRUE;
}

}  // namespace host
