// ST_HAN sets the horizontal angle, GT_MDT reports the measured data.
//   C<ST_HAN,HAN=12.3>     ->  ACK                                   (12 degrees 30 minutes)
//   C<GT_MDT,VAR,HAN,SDS>  ->  R<MDT,HAN=12.30000,SDS=,VAR=90.00000>, ACK   (table order; no valid distance)
// GT_MDT never asks the instrument: it reports what the last events left.
#include "QXCommMgr.h"
#include "commands/measure/measured_data.h"
#include "commands/measure/valuetext/angle_text.h"
#include "platform/lock.h"
#include "platform/qxsystem.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

struct Row {
  std::string_view key;
  double Snapshot::*value;
  void (*add)(Reply& reply, std::string_view key, double value);
};

constexpr Row kRows[] = {
    {"HAN", &Snapshot::han, AddAngle}, {"VAN", &Snapshot::van, AddAngle},    {"SDS", &Snapshot::sds, AddDistance},
    {"XTL", &Snapshot::xtl, AddAngle}, {"YTL", &Snapshot::ytl, AddAngle},    {"HAF", &Snapshot::haf, AddAngle},
    {"VAF", &Snapshot::vaf, AddAngle}, {"SDF", &Snapshot::sdf, AddDistance}, {"HAR", &Snapshot::har, AddAngle},
    {"VAR", &Snapshot::var, AddAngle},
};

bool HasSign(std::string_view text) { return text.substr(0, 1) == "+" || text.substr(0, 1) == "-"; }

}  // namespace

std::int32_t StHan(CommandProcessor& processor, const FieldMap& fields) {
  const auto* text = fields.Find("HAN");
  double angle = 0.0;
  if (text == nullptr || !ParseAngleDms(*text, true, &angle)) return kBadParameter;
  // A written sign reaches another call of the system library with the same number, "+" included.
  if (HasSign(*text)) {
    QxSystemSetSignedHorizontalAngle(angle);
  } else {
    QxSystemSetHorizontalAngle(angle);
  }
  processor.service().measured_data().UpdateAngles();
  processor.PostNotification(QCM_NOTIFY_HORIZONTAL_ANGLE_SET, 0);
  return kDone;
}

std::int32_t GtMdt(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("MDT");
  Service& service = processor.service();
  Guard guard(service.lock());
  const Snapshot& snapshot = service.measured_data().snapshot();
  for (const Row& row : kRows) {
    if (!fields.Has(row.key)) continue;
    if (row.add == AddDistance && !snapshot.distance_valid) {
      reply.Add(row.key, "");
    } else {
      row.add(reply, row.key, snapshot.*row.value);
    }
  }
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
