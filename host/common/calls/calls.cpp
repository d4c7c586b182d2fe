// The call log: a ring of the newest listed calls, and the number that calls and notices share.
#include "common/calls/calls.h"

#include <atomic>
#include <chrono>
#include <mutex>

#include "common/calls/entry.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
const Clock::time_point start_time = Clock::now();
std::atomic<std::uint64_t> last_number{0};

// A logged call as it is kept: the texts of library and call are literals and are not copied.
struct Slot {
  std::uint64_t n = 0;
  double at = 0;
  const char* library = nullptr;
  CallName call{0};
  CallValues args;
  CallValue result;
  bool returned = false;
};

struct CallLog {
  std::mutex mutex;
  bool on = false;                                  // guarded by mutex, like all below
  std::vector<Slot> ring;                           // kCallLogCapacity slots once listing has begun
  std::uint64_t made = 0;                           // calls listed; the next one's place, before it wraps round
  std::function<void(const CallRecord&)> observer;  // set before the first call; used without the lock
};

CallLog& Log() {
  static auto* log = new CallLog;  // calls may still come while the process ends
  return *log;
}

CallRecord ToRecord(const Slot& slot) {
  CallValue call = slot.call.name != nullptr ? CallValue(slot.call.name) : CallValue(std::int64_t{slot.call.ordinal});
  return {slot.n, slot.at, slot.library, std::move(call), slot.args, slot.result};
}

// To be called with the lock held, whenever log or observer have been turned on or off.
void WatchListing(CallLog& log) {
  if (log.on || log.observer) {
    log.ring.resize(kCallLogCapacity);
    internal::watch.fetch_or(internal::kListing);
  } else {
    internal::watch.fetch_and(~internal::kListing);
  }
}

}  // namespace

std::uint64_t TakeCallNumber() { return last_number.fetch_add(1) + 1; }

double MillisecondsSinceStart() { return std::chrono::duration<double, std::milli>(Clock::now() - start_time).count(); }

std::atomic<unsigned> internal::watch{0};

bool InLibraryCall() { return internal::CallDepth() != 0; }

void EnableCallLog(bool on) {
  CallLog& log = Log();
  const std::lock_guard<std::mutex> lock(log.mutex);
  if (on && !log.on) {
    log.ring.clear();
    log.made = 0;
  }
  log.on = on;
  WatchListing(log);
}

void SetCallObserver(std::function<void(const CallRecord&)> observer) {
  CallLog& log = Log();
  const std::lock_guard<std::mutex> lock(log.mutex);
  log.observer = std::move(observer);
  WatchListing(log);
}

// A call takes its number when it is made: what it sets off while it runs comes after it in the log.
ListedCall::ListedCall(const char* library, CallName call, CallValues args) {
  CallLog& log = Log();
  const std::lock_guard<std::mutex> lock(log.mutex);
  if (!log.on && !log.observer) return;
  place_ = log.made++;
  n_ = TakeCallNumber();
  log.ring[place_ % kCallLogCapacity] = {n_, MillisecondsSinceStart(), library, call, std::move(args), {}, false};
}

void ListedCall::Returned(CallValue result, const CallValues& told) {
  if (n_ == 0) return;
  CallLog& log = Log();
  CallRecord record;
  {
    const std::lock_guard<std::mutex> lock(log.mutex);
    Slot& slot = log.ring[place_ % kCallLogCapacity];
    if (slot.n != n_) return;  // the ring has come round while the call was under way
    slot.result = std::move(result);
    slot.args.insert(slot.args.end(), told.begin(), told.end());
    slot.returned = true;
    if (log.observer) record = ToRecord(slot);
  }
  if (record.n != 0) log.observer(record);
}

// Calls are told once and in order: one that has not returned yet holds back those made after it.
std::vector<CallRecord> CallsSince(std::uint64_t since, std::uint64_t* next) {
  CallLog& log = Log();
  std::vector<CallRecord> records;
  const std::lock_guard<std::mutex> lock(log.mutex);
  std::uint64_t end = last_number.load() + 1;
  const std::uint64_t oldest = log.made > kCallLogCapacity ? log.made - kCallLogCapacity : 0;
  for (std::uint64_t place = oldest; place < log.made; ++place) {
    const Slot& slot = log.ring[place % kCallLogCapacity];
    if (slot.n < since) continue;
    if (!slot.returned) {
      end = slot.n;
      break;
    }
    records.push_back(ToRecord(slot));
  }
  if (next != nullptr) *next = end;
  return records;
}

}  // namespace host
