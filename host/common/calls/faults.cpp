// The fault table: which of the library's calls fail, which are late, and which counting decides it.
#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include "common/calls/entry.h"

namespace host {
namespace {

struct ArmedFault {
  Fault fault;
  std::uint64_t seen = 0;  // matching calls since it was added
};

struct FaultTable {
  std::mutex mutex;
  std::vector<ArmedFault> faults;  // guarded by mutex
};

FaultTable& TheFaults() {
  static auto* table = new FaultTable;  // calls may still come while the process ends
  return *table;
}

// Paths and keys compare as the platform compares them, and both ways of writing the separator are taken.
char Folded(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '/' ? '\\' : c;
}

bool SameSubject(const std::string& left, const std::string& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return Folded(a) == Folded(b); });
}

bool WorksOn(const internal::CallView& call, const std::string& subject) {
  for (const CallValue& value : call.args()) {
    const auto* text = std::get_if<std::string>(&value);
    if (text != nullptr && SameSubject(*text, subject)) return true;
  }
  return SameSubject(call.subject(), subject);
}

bool SameCall(const CallValue& wanted, CallName call) {
  if (call.name == nullptr) return wanted == CallValue(std::int64_t{call.ordinal});
  const auto* text = std::get_if<std::string>(&wanted);
  return text != nullptr && *text == call.name;
}

bool Matches(const Fault& fault, const internal::CallView& call) {
  return fault.library == call.library && SameCall(fault.call, call.call) && (!fault.on || WorksOn(call, *fault.on));
}

std::int64_t FailureNumber(FailsWith fails, std::uint32_t error) {
  if (fails == FailsWith::kMinusOne) return -1;
  return fails == FailsWith::kErrorCode ? std::int64_t{error} : 0;
}

struct Outcome {
  std::optional<std::int64_t> result;
  std::optional<std::uint32_t> error;
  std::uint32_t delay_ms = 0;
};

// Every matching fault counts the call; where several apply at once, the oldest one's word stands.
Outcome Count(const internal::CallView& call) {
  FaultTable& table = TheFaults();
  const std::lock_guard<std::mutex> lock(table.mutex);
  Outcome outcome;
  for (ArmedFault& armed : table.faults) {
    const Fault& fault = armed.fault;
    if (!Matches(fault, call)) continue;
    const std::uint64_t number = ++armed.seen;
    if (number < fault.nth || number - fault.nth >= fault.times) continue;
    outcome.delay_ms += fault.delay_ms;
    if (outcome.result || outcome.error) continue;
    outcome.result = fault.result;
    outcome.error = fault.error;
  }
  return outcome;
}

}  // namespace

std::optional<std::int64_t> internal::TakeFaults(const CallView& call) {
  if ((watch.load(std::memory_order_relaxed) & kFaultsSet) == 0) return std::nullopt;
  const Outcome outcome = Count(call);
  if (outcome.delay_ms != 0) std::this_thread::sleep_for(std::chrono::milliseconds(outcome.delay_ms));
  if (outcome.error) SetLastError(*outcome.error);
  if (outcome.result) return outcome.result;
  if (outcome.error) return FailureNumber(call.fails, *outcome.error);
  return std::nullopt;
}

void AddFault(Fault fault) {
  FaultTable& table = TheFaults();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.faults.push_back({std::move(fault), 0});
  internal::watch.fetch_or(internal::kFaultsSet);
}

void ClearFaults() {
  FaultTable& table = TheFaults();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.faults.clear();
  internal::watch.fetch_and(~internal::kFaultsSet);
}

}  // namespace host
