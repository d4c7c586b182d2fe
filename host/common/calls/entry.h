// The way in of every call that the library makes: faults, the call log, and the mark "inside a library call".
//
// With no fault set and nothing to list, a call costs one relaxed load and one thread-local count; arguments are
// turned into values only when a fault looks at them or the call is listed.
#ifndef QXHOST_COMMON_CALLS_ENTRY_H
#define QXHOST_COMMON_CALLS_ENTRY_H

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/calls/calls.h"

namespace host {

/// A call's name or, for libraries imported by ordinal, its number. The text must live for ever (a literal).
struct CallName {
  constexpr CallName(const char* call_name) : name(call_name) {}
  constexpr CallName(int call_ordinal) : ordinal(call_ordinal) {}
  const char* name = nullptr;
  int ordinal = 0;
};

/// What a call returns when a fault gives only an error: 0, -1 (invalid handle, failed wait) or the error itself.
enum class FailsWith { kZero, kMinusOne, kErrorCode };

using CallValues = std::vector<CallValue>;

/// How a call's result is listed and made from a fault's number. Specialise it for results of another kind.
template <class Result>
struct CallResult {
  static CallValue Listed(Result result) {
    if constexpr (std::is_pointer_v<Result>) {
      return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(result));
    } else if constexpr (std::is_floating_point_v<Result>) {
      return static_cast<double>(result);
    } else {
      return static_cast<std::int64_t>(result);
    }
  }
  static Result Failed(std::int64_t number) {
    if constexpr (std::is_pointer_v<Result>) {
      return reinterpret_cast<Result>(static_cast<std::intptr_t>(number));
    } else {
      return static_cast<Result>(number);
    }
  }
};

template <>
struct CallResult<void> {};

template <>
struct CallResult<std::string> {
  static CallValue Listed(std::string result) { return result; }
  static std::string Failed(std::int64_t) { return {}; }
};

/// A result with arguments that only the call's return tells, such as the bytes it has read: they are listed behind the
/// others.
template <class Result>
struct Answer {
  Result result;
  CallValues told;
};

template <class Result>
struct CallResult<Answer<Result>> {
  static CallValue Listed(const Answer<Result>& answer) { return CallResult<Result>::Listed(answer.result); }
  static Answer<Result> Failed(std::int64_t number) { return {CallResult<Result>::Failed(number), {}}; }
};

/// One call's line in the log: made when the call is made, completed when it returns.
class ListedCall {
 public:
  ListedCall(const char* library, CallName call, CallValues args);
  /// Completes the line and shows it to the observer. A line that is never completed holds back all later ones.
  /// \param told  further arguments
  void Returned(CallValue result, const CallValues& told = {});

 private:
  std::uint64_t n_ = 0;  // 0: neither log nor observer wanted it
  std::uint64_t place_ = 0;
};

namespace internal {

constexpr unsigned kFaultsSet = 1;
constexpr unsigned kListing = 2;
extern std::atomic<unsigned> watch;

/// How many of the library's calls the calling thread is inside of. The last error stays as it is.
unsigned& CallDepth();

class InsideCall {
 public:
  InsideCall() : depth_(CallDepth()) { ++depth_; }
  ~InsideCall() { --depth_; }
  InsideCall(const InsideCall&) = delete;
  InsideCall& operator=(const InsideCall&) = delete;

 private:
  unsigned& depth_;
};

/// What runs meanwhile is the application's own, even inside one of the library's calls.
class OutsideCalls {
 public:
  OutsideCalls() : depth_(CallDepth()), inside_(std::exchange(depth_, 0u)) {}
  ~OutsideCalls() { depth_ = inside_; }
  OutsideCalls(const OutsideCalls&) = delete;
  OutsideCalls& operator=(const OutsideCalls&) = delete;

 private:
  unsigned& depth_;
  const unsigned inside_;
};

/// A callable that outlives the call it is passed to, without its type.
template <class Value>
class FunctionRef {
 public:
  template <class Function>
  explicit FunctionRef(const Function& function)
      : object_(&function),
        call_([](const void* object) -> Value { return (*static_cast<const Function*>(object))(); }) {}
  Value operator()() const { return call_(object_); }

 private:
  const void* object_;
  Value (*call_)(const void*);
};

template <class Result>
CallValues Told(const Result&) {
  return {};
}
template <class Result>
CallValues Told(const Answer<Result>& answer) {
  return answer.told;
}

struct CallView {
  const char* library;
  CallName call;
  FailsWith fails;
  FunctionRef<CallValues> args;
  FunctionRef<std::string> subject;
};

/// Counts the call against every fault that matches it and waits as long as they say.
/// Returns the number to fail with, the last error set; nothing when the real call shall be made.
std::optional<std::int64_t> TakeFaults(const CallView& call);

template <class Real>
[[gnu::noinline, gnu::cold]] std::invoke_result_t<Real> WatchedCall(const CallView& call, bool listed, Real&& real) {
  using Result = std::invoke_result_t<Real>;
  std::optional<ListedCall> record;
  if (listed) record.emplace(call.library, call.call, call.args());
  const std::optional<std::int64_t> fault = TakeFaults(call);
  if (fault && !listed) record.emplace(call.library, call.call, call.args());
  if constexpr (std::is_void_v<Result>) {
    if (!fault) real();
    if (record) record->Returned(nullptr);
  } else {
    Result result = fault ? CallResult<Result>::Failed(*fault) : real();
    if (record) record->Returned(CallResult<Result>::Listed(result), Told(result));
    return result;
  }
}

}  // namespace internal

/// Makes one call for the library.
///
/// \param library  the library's name, a literal ("COREDLL", "QxSystem" ...)
/// \param call     the call's name or ordinal
/// \param listed   whether the log shows it when it does not fail; a call that a fault makes fail is always shown
/// \param args     callable without arguments that returns CallValues; used only when needed, before the call
/// \param real     callable that makes the call; its result is returned
/// \param fails    what the call returns when a fault gives only an error
/// \param subject  callable that returns the path, device or key the call works on, for faults limited to one; the
///                 texts among `args` need not be repeated here
template <class Args, class Real, class Subject>
std::invoke_result_t<Real> Entry(const char* library, CallName call, bool listed, const Args& args, Real&& real,
                                 FailsWith fails, const Subject& subject) {
  using internal::FunctionRef;
  internal::InsideCall inside;
  const unsigned wanted = listed ? internal::kFaultsSet | internal::kListing : internal::kFaultsSet;
  if ((internal::watch.load(std::memory_order_relaxed) & wanted) == 0) return real();
  const internal::CallView view{library, call, fails, FunctionRef<CallValues>(args), FunctionRef<std::string>(subject)};
  return internal::WatchedCall(view, listed, std::forward<Real>(real));
}

/// The same for a call whose path, device or key, if any, is among its arguments.
template <class Args, class Real>
std::invoke_result_t<Real> Entry(const char* library, CallName call, bool listed, const Args& args, Real&& real,
                                 FailsWith fails = FailsWith::kZero) {
  return Entry(library, call, listed, args, std::forward<Real>(real), fails, [] { return std::string(); });
}

}  // namespace host

#endif
