// ST_EQP, GT_EQP: eight one-byte switches of the instrument's store.
//   C<ST_EQP,TLT=2,LPL=1>  ->  ACK                                  (table order: LPL first)
//   C<GT_EQP,TLT,LPL>      ->  R<EQP,LPL=1,TLT=2>, ACK
// ST_EQP stops at the first bad value; the keys before it stay set.
#include <cstdint>
#include <string_view>

#include "QXCommMgr.h"
#include "commands/instrument/devices/gpio.h"
#include "commands/instrument/devices/sensors.h"
#include "commands/instrument/store_items.h"
#include "commands/measure/valuetext/number_text.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::uint32_t kFollowingLine = 14;

void Store(CommandProcessor&, std::uint32_t item, std::uint8_t value) { WriteItem(item, value); }

void StoreAndTellTiltSensor(CommandProcessor& processor, std::uint32_t item, std::uint8_t value) {
  WriteItem(item, value);
  WriteTiltSwitch(processor, value);  // its failure is not reported
}

void StoreAndFollowWithLine(CommandProcessor& processor, std::uint32_t item, std::uint8_t value) {
  const auto before = ReadItem<std::uint8_t>(item);
  WriteItem(item, value);
  if (value != before) SetGpioLine(kFollowingLine, value != 0, processor.stop_event());  // nor is this one's
}

struct Row {
  std::string_view key;
  std::uint32_t item;
  std::uint8_t highest;
  void (*set)(CommandProcessor& processor, std::uint32_t item, std::uint8_t value);
};
constexpr Row kRows[] = {
    {"LPL", 0xA90201, 1, Store}, {"BLT", 0xAA0201, 1, Store},
    {"LPT", 0xA80201, 1, Store}, {"LGD", 0xA60201, 1, Store},
    {"RTL", 0xA70201, 1, Store}, {"TLT", 0xA50201, 2, StoreAndTellTiltSensor},
    {"AFO", 0xAC0201, 1, Store}, {"L2P", 0xB00201, 1, StoreAndFollowWithLine},
};

}  // namespace

std::int32_t StEqp(CommandProcessor& processor, const FieldMap& fields) {
  for (const Row& row : kRows) {
    const auto* text = fields.Find(row.key);
    if (text == nullptr) continue;
    const auto value = static_cast<std::uint8_t>(ParseLeadingInt(*text));  // 257 stores 1 (kept)
    if (value > row.highest) return kBadParameter;
    row.set(processor, row.item, value);
    processor.PostNotification(QCM_NOTIFY_EQUIPMENT_CHANGED, 0);
  }
  return kDone;
}

std::int32_t GtEqp(CommandProcessor& processor, const FieldMap& fields) {
  Reply reply("EQP");
  for (const Row& row : kRows) {
    if (fields.Has(row.key)) reply.AddInt(row.key, ReadItem<std::uint8_t>(row.item));
  }
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
