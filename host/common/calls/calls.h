// The library's calls to its platform: a bounded log of them, and faults that make chosen calls fail.
//
// Every call that the library makes enters through Entry(), which applies the fault table and lists the call. The
// host's own parts and the application's windows use the implementations directly and are neither listed nor faulted.
#ifndef QXHOST_COMMON_CALLS_CALLS_H
#define QXHOST_COMMON_CALLS_CALLS_H

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

/// A number, a text (UTF-8) or null (a null pointer).
using CallValue = std::variant<std::nullptr_t, std::int64_t, double, std::string>;

struct CallRecord {
  std::uint64_t n = 0;  ///< counts calls and notices together, from 1
  double at = 0;        ///< milliseconds since start, when the call was made
  std::string library;  ///< "COREDLL", "QxSystem", "BTHUTIL", "ParamBlk", "OPVLIB", "I2C5:", "GIO1:"
  CallValue call;       ///< a name, or an ordinal
  std::vector<CallValue> args;
  CallValue result;
};

/// Makes calls fail. Counted from when it is added: from the nth matching call on, so many times.
struct Fault {
  std::string library;
  CallValue call;
  std::uint64_t nth = 1;
  std::uint64_t times = 1;
  std::optional<std::int64_t>
      result;  ///< what the call returns (0 when only `error` is given); the real call is not made
  std::optional<std::uint32_t> error;  ///< becomes the last error
  std::optional<std::string> on;       ///< only for this path, device or key
  std::uint32_t delay_ms = 0;          ///< with neither result nor error: the real call is made that much later
};

void AddFault(Fault fault);
void ClearFaults();

/// The log is off until qxsim or a test turns it on; it keeps the newest calls only (kCallLogCapacity).
constexpr std::size_t kCallLogCapacity = 16384;
void EnableCallLog(bool on);
/// The logged calls with n >= since, oldest first, and the number to ask from the next time. A call that has not
/// returned yet holds back those made after it, so that every call is told once and in order.
std::vector<CallRecord> CallsSince(std::uint64_t since, std::uint64_t* next);
/// The next number of the common count of calls and notices.
std::uint64_t TakeCallNumber();
double MillisecondsSinceStart();
/// Called for every listed call as it is made (for --trace); null for none. Set it before the first service opens.
void SetCallObserver(std::function<void(const CallRecord&)> observer);

/// True on a thread that is inside a call the library made.
bool InLibraryCall();

}  // namespace host

#endif
