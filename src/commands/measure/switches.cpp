// ST_HSW, GT_HSW: four switches of the instrument, kept by its system library.
//   C<ST_HSW,LPT=1,LGD=0>  ->  ACK                          (LGD is set first: table order)
//   C<GT_HSW,DBL,LGD>      ->  R<HSW,LGD=0,DBL=0>, ACK
// ST_HSW stops at the first switch that the library refuses; the ones before it stay set.
#include <cstdint>
#include <string_view>

#include "commands/measure/valuetext/number_text.h"
#include "platform/qxsystem.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

struct Row {
  std::string_view key;
  std::int32_t number;
};

constexpr Row kRows[] = {{"LGD", 1}, {"RTL", 0}, {"LPT", 2}, {"LPL", 3}};
constexpr std::string_view kNoSwitch = "DBL";  // always reported as off

}  // namespace

std::int32_t StHsw(CommandProcessor&, const FieldMap& fields) {
  for (const Row& row : kRows) {
    const auto* text = fields.Find(row.key);
    if (text != nullptr && QxSystemSetSwitch(row.number, ParseLeadingInt(*text)) != 0) return kBadParameter;
  }
  return kDone;
}

std::int32_t GtHsw(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("HSW");
  std::int32_t value = 0;  // one for all: a read that fails repeats the switch before it (kept)
  for (const Row& row : kRows) {
    if (!fields.Has(row.key)) continue;
    QxSystemGetSwitch(row.number, &value);
    reply.AddInt(row.key, value);
  }
  if (fields.Has(kNoSwitch)) reply.AddInt(kNoSwitch, 0);
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
