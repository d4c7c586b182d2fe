// A real service over a link in memory, on an instrument at rest: for the tests of the measuring commands.
//
// The test plays the controller, the event window (HandleEvent) and the instrument's sensors (host/instrument).
#ifndef QXTEST_UNIT_MEASURE_MEASURING_SERVICE_H
#define QXTEST_UNIT_MEASURE_MEASURING_SERVICE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "api/comm_manager.h"
#include "common/calls/calls.h"
#include "instrument/angles.h"
#include "instrument/focus_side.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace qxtest {

/// Radians as the wire's integer unit, the tenth of a second of arc, gives them.
double Tenths(double tenths);
inline double Degrees(double degrees) { return Tenths(degrees * 36000); }

/// All sensors at zero, no measurement, switches off, no focus job, no faults; the call log is on. Leaves it the same.
class InstrumentAtRest {
 public:
  InstrumentAtRest();
  InstrumentAtRest(const InstrumentAtRest&) = delete;
  InstrumentAtRest& operator=(const InstrumentAtRest&) = delete;
  ~InstrumentAtRest();

  static void Point(const std::function<void(host::instrument::Pose&)>& change) {
    host::instrument::Angles::Instance().Change(change);
  }
  /// The instrument has this distance, and it is valid.
  static void GiveDistance(double metres);

  static void Fail(int ordinal, std::int64_t result = -1, std::uint64_t nth = 1, std::uint64_t times = kForGood);

  /// The system library's calls with these ordinals since the start or the last ForgetCalls, as "5(1, 0)".
  std::vector<std::string> Calls(std::initializer_list<int> ordinals) const;
  void ForgetCalls() { calls_begin_ = host::TakeCallNumber() + 1; }

 private:
  static void Rest();
  std::uint64_t calls_begin_ = 0;
};

class MeasuringService : public InstrumentAtRest {
 public:
  /// "ok", or the text of the only reply before the ACK.
  std::string Answer(std::string_view command);
  /// Has a command carried out while the service is suspended; returns what is written afterwards, but ACKs and the
  /// answer to a "GT_OMD" that ends it.
  std::string WrittenOfSuspended(std::string_view command);
  /// Delivers events and returns what was sent because of them.
  std::string Event(std::uint32_t mask);
  /// Waits until this message has come; returns all that has come until then.
  std::string Await(std::string_view message);
  /// Holds the manager lock while `work` runs.
  void Locked(const std::function<void()>& work);

  MemoryLine line;
  qxcm::CommManager manager{u"COM5", line.MakeLink()};
};

// Event bits.
constexpr std::uint32_t kDistanceReady = 0x1;
constexpr std::uint32_t kStatusChanged = 0x2;
constexpr std::uint32_t kMeasurementEnded = 0x4;
constexpr std::uint32_t kAnglesChanged = 0x8;
constexpr std::uint32_t kTiltChanged = 0x40;
constexpr std::uint32_t kDistanceRefresh = 0x40000;

}  // namespace qxtest

#endif
