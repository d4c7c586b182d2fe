// The instrument's angles, tilts and last distance as the last events left them, and the messages about their changes.
//
// One place owns these values; all of them are guarded by the manager lock of their service, which is held for the
// whole of an update and of a reply, so that no reply mixes two updates.
#ifndef QXCM_COMMANDS_MEASURE_MEASURED_DATA_H
#define QXCM_COMMANDS_MEASURE_MEASURED_DATA_H

#include <cstdint>
#include <string_view>

#include "commands/measure/output_modes.h"
#include "platform/qxsystem.h"
#include "platform/windows_api.h"
#include "protocol/reply.h"
#include "protocol/service.h"

namespace qxcm {

/// What GT_MDT reports; members are named after the wire keys. Angles and tilts in radians, distances in metres.
struct Snapshot {
  double xtl = 0, ytl = 0;  // tilt
  double har = 0, var = 0;
  double haf = 0, vaf = 0;  // not rounded
  double han = 0, van = 0;  // rounded to the display step
  double sdf = 0;           // slope distance with offset
  double sds = 0;           // the same, its fraction rounded to 0.1 mm
  bool distance_valid = false;
};

/// Adds an angle in wire text.
void AddAngle(Reply& reply, std::string_view key, double radians);
/// Adds a distance in wire text.
void AddDistance(Reply& reply, std::string_view key, double metres);

/// The functions take the manager lock themselves; the accessors are used under it.
class MeasuredData {
 public:
  static constexpr double kSmallestRoundStep = 0.1;  // seconds of arc
  static constexpr double kLargestRoundStep = 60.0;

  explicit MeasuredData(Service& service) : service_(service) {}

  /// Reads tilts, angles and distance for the first time; sends nothing.
  void ReadAll();
  /// Refreshes what the event mask names and sends the messages that the output modes ask for.
  void HandleEvent(DWORD mask);
  /// Reads the angles and sends the message that the output mode asks for.
  void UpdateAngles();

  /// The step (seconds of arc) that reported angles are rounded to; false outside its limits, with nothing changed.
  bool SetRoundStep(double step);
  /// What the next distances are measured with: metres added, and whether the first one ends the measurement.
  void SetMeasurement(double offset, bool single_shot);

  const Snapshot& snapshot() const { return snapshot_; }
  OutputModes& output_modes() { return output_modes_; }

 private:
  struct PairKeys;
  enum class Sending { kOff, kOn };

  void UpdateTilt(Sending sending);
  void UpdateAngles(Sending sending);
  void UpdatePair(const PairKeys& keys, const QxPair& values, bool send) QXCM_REQUIRES(service_.lock());
  void ReadStatus() QXCM_REQUIRES(service_.lock());
  void ReportDistance(Sending sending);
  void KeepDistance() QXCM_REQUIRES(service_.lock());
  void SendDistance() QXCM_REQUIRES(service_.lock());
  void HandleDistanceReady();

  Service& service_;
  OutputModes output_modes_ QXCM_GUARDED_BY(service_.lock());
  double round_step_ QXCM_GUARDED_BY(service_.lock()) = 1.0;
  double distance_offset_ QXCM_GUARDED_BY(service_.lock()) = 0.0;
  bool single_shot_ QXCM_GUARDED_BY(service_.lock()) = false;
  Snapshot snapshot_ QXCM_GUARDED_BY(service_.lock());
  // As the system library last gave them; a read that fails leaves them.
  QxMeasurementStatus status_ QXCM_GUARDED_BY(service_.lock()) = {};
  QxMeasurementRecord measurement_ QXCM_GUARDED_BY(service_.lock()) = {};
  // The last measurement's own angles, apart from the snapshot's: a distance never swallows an angle message.
  QxPair measured_rounded_ QXCM_GUARDED_BY(service_.lock()) = {};
};

}  // namespace qxcm

#endif
