// ST_OMD, GT_OMD: which messages the controller wants unasked.
//   C<ST_OMD,ANG=1,KEY=1>  ->  ACK
//   C<GT_OMD,KEY,ANG>      ->  R<OMD,ANG=1,KEY=1>, ACK        (table order)
// ST_OMD stops at the first bad value; the modes before it stay set.
#include "commands/measure/output_modes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "commands/measure/measured_data.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/lock.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

struct Row {
  std::string_view key;
  std::int32_t OutputModes::*mode;
  std::array<std::int32_t, 4> accepted;  // beside 0, which every mode accepts; unused places are 0

  bool Accepts(std::int32_t value) const {
    return value == 0 || std::find(accepted.begin(), accepted.end(), value) != accepted.end();
  }
};

constexpr Row kRows[] = {
    {"ANG", &OutputModes::angle, {1, 11, 21}},
    {"TLT", &OutputModes::tilt, {1}},
    {"DST", &OutputModes::distance, {1, 2, 11, 12}},
    {"KEY", &OutputModes::key, {1}},
};

constexpr int kKeyDigits = 2;

}  // namespace

std::int32_t StOmd(CommandProcessor& processor, const FieldMap& fields) {
  Service& service = processor.service();
  Guard guard(service.lock());
  OutputModes& modes = service.measured_data().output_modes();
  for (const Row& row : kRows) {
    const auto* text = fields.Find(row.key);
    if (text == nullptr) continue;
    const std::int32_t value = ParseLeadingInt(*text);
    if (!row.Accepts(value)) return kBadParameter;
    modes.*row.mode = value;
  }
  return kDone;
}

std::int32_t GtOmd(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("OMD");
  Service& service = processor.service();
  Guard guard(service.lock());
  const OutputModes& modes = service.measured_data().output_modes();
  for (const Row& row : kRows) {
    if (fields.Has(row.key)) reply.AddInt(row.key, modes.*row.mode);
  }
  processor.SendReply(reply);
  return kDone;
}

void ReportKey(Service& service, std::uint32_t code) {
  Guard guard(service.lock());
  if (service.measured_data().output_modes().key != 1) return;
  service.SendAsynchronous(Reply("MDT").AddHex("KEY", code, kKeyDigits).text());
}

}  // namespace qxcm
