// MR_DST: starts or stops a distance measurement.
//   C<MR_DST,MOD=F,OFS=12.5,REP=0>  ->  ACK, later  A<MDT,SDS=10.0125>  (with ST_OMD,DST=1)
// All fields are checked before anything changes.
#include <optional>
#include <string_view>

#include "QXCommMgr.h"
#include "commands/measure/measured_data.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/qxsystem.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr double kMetresPerMillimetre = 0.001;

struct Letter {
  char letter;
  std::uint32_t value;
};
constexpr Letter kModes[] = {{'A', 1}, {'N', 2}, {'F', 3}};
constexpr Letter kTargets[] = {{'P', 0}, {'N', 1}};
constexpr Letter kSingleShots[] = {{'0', 1}, {'1', 0}};

/// The value of a field's first character, or of an absent field; nothing for any other character or an empty field.
template <std::size_t count>
std::optional<std::uint32_t> Read(const FieldMap& fields, std::string_view key, const Letter (&letters)[count],
                                  std::uint32_t absent) {
  const auto* text = fields.Find(key);
  if (text == nullptr) return absent;
  for (const Letter& row : letters) {
    if (text->substr(0, 1) == std::string_view(&row.letter, 1)) return row.value;
  }
  return std::nullopt;
}

double ReadOffset(const FieldMap& fields) {
  const auto* text = fields.Find("OFS");
  return text == nullptr ? 0.0 : ParseLeadingDouble(*text) * kMetresPerMillimetre;
}

std::optional<QCM_MSR_PARAMS> ReadRequest(const FieldMap& fields) {
  const auto mode = Read(fields, "MOD", kModes, 1);
  const auto target = Read(fields, "TGT", kTargets, 0);
  const auto single_shot = Read(fields, "REP", kSingleShots, 0);
  if (!mode || !target || !single_shot) return std::nullopt;
  return QCM_MSR_PARAMS{*mode, *target, *single_shot, 0, ReadOffset(fields)};
}

bool IsStop(const FieldMap& fields) {
  const auto* mode = fields.Find("MOD");
  return mode != nullptr && mode->substr(0, 1) == "0";
}

}  // namespace

std::int32_t MrDst(CommandProcessor& processor, const FieldMap& fields) {
  if (IsStop(fields)) {  // whatever the other fields hold
    QxSystemStopDistance();
    return kDone;
  }
  const auto request = ReadRequest(fields);
  if (!request) return kBadParameter;
  Service& service = processor.service();
  service.measured_data().SetMeasurement(request->offset, request->single_shot != 0);
  service.StoreRequest(*request);
  // Sent, not posted: the application has taken the request before the measurement starts.
  service.SendNotification(QCM_NOTIFY_DISTANCE_REQUEST, 0);
  QxSystemStartDistance(request->mode, request->target);
  return kDone;
}

}  // namespace qxcm
