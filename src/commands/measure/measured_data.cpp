// Updates of the measured data from the system library, and their "MDT" messages.
#include "commands/measure/measured_data.h"

#include <cmath>

#include "commands/measure/valuetext/angle_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/lock.h"

namespace qxcm {

namespace {

// Event mask bits.
constexpr DWORD kTiltBits = 0x7C0;
constexpr DWORD kAngleBits = 0x80038;
constexpr DWORD kDistanceRefreshBit = 0x40000;
constexpr DWORD kStatusBits = 0x6;
constexpr DWORD kMeasurementEndBit = 0x4;
constexpr DWORD kDistanceReadyBit = 0x1;

// Output modes.
constexpr std::int32_t kAnglesRounded = 1;
constexpr std::int32_t kAnglesRaw = 11;
constexpr std::int32_t kAnglesReference = 21;
constexpr std::int32_t kTiltOn = 1;
constexpr std::int32_t kDistanceRounded = 1;
constexpr std::int32_t kDistanceRoundedWithAngles = 2;
constexpr std::int32_t kDistanceRaw = 11;
constexpr std::int32_t kDistanceRawWithAngles = 12;

constexpr std::string_view kMeasuredData = "MDT";
constexpr std::size_t kFieldBuffer = 64;
constexpr std::int32_t kAngleFlag = 0;

/// Exact comparison; a value that is not a number does not differ from itself.
bool Differs(double a, double b) { return a != b && !(std::isnan(a) && std::isnan(b)); }

QxPair Rounded(const QxPair& angles, double step) {
  return {RoundAngle(angles.first, step), RoundAngle(angles.second, step)};
}

/// The fraction to 0.1 mm: half a unit is added whatever the sign, so negative halves go toward zero (kept).
double RoundDistance(double metres) {
  double whole = 0.0;
  const double fraction = std::modf(metres, &whole);
  return whole + WholePart(fraction * 10000.0 + 0.5) * 0.0001;
}

}  // namespace

void AddAngle(Reply& reply, std::string_view key, double radians) {
  char text[kFieldBuffer];
  reply.Add(key, FormatAngleDms(text, sizeof text, radians));
}

void AddDistance(Reply& reply, std::string_view key, double metres) {
  char text[kFieldBuffer];
  reply.Add(key, FormatFixed4(text, sizeof text, metres));
}

struct MeasuredData::PairKeys {
  std::string_view first_key;
  double Snapshot::*first;
  std::string_view second_key;
  double Snapshot::*second;
};

void MeasuredData::ReadAll() {
  Guard guard(service_.lock());
  UpdateTilt(Sending::kOff);
  UpdateAngles(Sending::kOff);
  ReportDistance(Sending::kOff);
}

void MeasuredData::HandleEvent(DWORD mask) {
  if ((mask & kTiltBits) != 0) UpdateTilt(Sending::kOn);
  if ((mask & kAngleBits) != 0) UpdateAngles(Sending::kOn);
  if ((mask & kDistanceRefreshBit) != 0) ReportDistance(Sending::kOff);
  if ((mask & kStatusBits) != 0) {
    Guard guard(service_.lock());
    ReadStatus();
    if ((mask & kMeasurementEndBit) != 0) single_shot_ = false;
  }
  if ((mask & kDistanceReadyBit) != 0) HandleDistanceReady();
}

void MeasuredData::UpdateAngles() { UpdateAngles(Sending::kOn); }

bool MeasuredData::SetRoundStep(double step) {
  if (!(step >= kSmallestRoundStep && step <= kLargestRoundStep)) return false;  // not a number is refused too
  Guard guard(service_.lock());
  round_step_ = step;
  return true;
}

void MeasuredData::SetMeasurement(double offset, bool single_shot) {
  Guard guard(service_.lock());
  distance_offset_ = offset;
  single_shot_ = single_shot;
}

/// Keeps two values and, when asked to, sends those that changed.
void MeasuredData::UpdatePair(const PairKeys& keys, const QxPair& values, bool send) {
  const bool first_changed = Differs(snapshot_.*keys.first, values.first);
  const bool second_changed = Differs(snapshot_.*keys.second, values.second);
  snapshot_.*keys.first = values.first;
  snapshot_.*keys.second = values.second;
  if (!send || !(first_changed || second_changed)) return;
  Reply message(kMeasuredData);
  if (first_changed) AddAngle(message, keys.first_key, values.first);
  if (second_changed) AddAngle(message, keys.second_key, values.second);
  service_.SendAsynchronous(message.text());
}

void MeasuredData::UpdateTilt(Sending sending) {
  static constexpr PairKeys kTilt = {"XTL", &Snapshot::xtl, "YTL", &Snapshot::ytl};
  Guard guard(service_.lock());
  QxPair tilt = {snapshot_.xtl, snapshot_.ytl};
  QxSystemGetTilt(&tilt);
  UpdatePair(kTilt, tilt, sending == Sending::kOn && output_modes_.tilt == kTiltOn);
}

void MeasuredData::UpdateAngles(Sending sending) {
  static constexpr PairKeys kReference = {"HAR", &Snapshot::har, "VAR", &Snapshot::var};
  static constexpr PairKeys kRaw = {"HAF", &Snapshot::haf, "VAF", &Snapshot::vaf};
  static constexpr PairKeys kRounded = {"HAN", &Snapshot::han, "VAN", &Snapshot::van};
  Guard guard(service_.lock());
  const std::int32_t mode = sending == Sending::kOn ? output_modes_.angle : 0;

  QxPair reference = {snapshot_.har, snapshot_.var};
  QxSystemGetReferenceAngles(&reference);
  UpdatePair(kReference, reference, mode == kAnglesReference);

  QxAngleRecord record = {{snapshot_.haf, snapshot_.vaf}, {}};
  QxSystemGetAngles(&record, kAngleFlag);
  UpdatePair(kRaw, record.angles, mode == kAnglesRaw);
  UpdatePair(kRounded, Rounded(record.angles, round_step_), mode == kAnglesRounded);
}

void MeasuredData::ReadStatus() {
  QxSystemGetMeasurementStatus(&status_);
  snapshot_.distance_valid = status_.distance_valid != 0;
}

void MeasuredData::ReportDistance(Sending sending) {
  Guard guard(service_.lock());
  ReadStatus();
  QxSystemGetMeasurement(&measurement_);
  KeepDistance();
  if (snapshot_.distance_valid && sending == Sending::kOn) SendDistance();
}

void MeasuredData::KeepDistance() {
  measured_rounded_ = Rounded(measurement_.angles, round_step_);
  if (snapshot_.distance_valid) {
    snapshot_.sdf = measurement_.slope_distance + distance_offset_;
    snapshot_.sds = RoundDistance(snapshot_.sdf);
  } else {
    snapshot_.sdf = snapshot_.sds = measurement_.slope_distance;
  }
}

// The raw form reports raw values and the rounded form rounded ones, deliberately.
void MeasuredData::SendDistance() {
  const std::int32_t mode = output_modes_.distance;
  Reply message(kMeasuredData);
  if (mode == kDistanceRaw || mode == kDistanceRawWithAngles) {
    AddDistance(message, "SDF", snapshot_.sdf);
  } else if (mode == kDistanceRounded || mode == kDistanceRoundedWithAngles) {
    AddDistance(message, "SDS", snapshot_.sds);
  } else {
    return;
  }
  if (mode == kDistanceRawWithAngles) {
    AddAngle(message, "HAF", measurement_.angles.first);
    AddAngle(message, "VAF", measurement_.angles.second);
  } else if (mode == kDistanceRoundedWithAngles) {
    AddAngle(message, "HAN", measured_rounded_.first);
    AddAngle(message, "VAN", measured_rounded_.second);
  }
  service_.SendAsynchronous(message.text());
}

// Under the lock as a whole: the controller may have the distance before the stop is called, and its next request must
// not start a measurement that this stop ends.
void MeasuredData::HandleDistanceReady() {
  Guard guard(service_.lock());
  ReportDistance(Sending::kOn);
  if (single_shot_) QxSystemStopDistance();
}

}  // namespace qxcm
