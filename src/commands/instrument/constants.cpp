// ST_CST, GT_CST: the instrument's constants, in its store and in its sensors.
//   C<GT_CST,IN_BRD,IN_NAM>    ->  R<CST,IN_NAM=DX-1,IN_BRD=Korax>, ACK              (table order)
//   C<ST_CST,IS_DTM=20240229>  ->  ACK
// ST_CST stops at the first constant that is refused or not written; those before it stay set. GT_CST answers nothing
// but the error when a sensor fails.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "QXCommMgr.h"
#include "commands/instrument/brand_record.h"
#include "commands/instrument/devices/i2c_bus.h"
#include "commands/instrument/devices/sensors.h"
#include "commands/instrument/inspection_date.h"
#include "commands/instrument/store_items.h"
#include "commands/measure/valuetext/number_text.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::size_t kLongestName = 16;
constexpr std::size_t kSerialLength = 16;
constexpr std::int32_t kVnsScale = -10;  // of the offset, in distance meters of the type VNS

constexpr std::string_view kTiltX = "TL_XSL";
constexpr std::string_view kTiltY = "TL_YSL";
constexpr LPARAM kTiltXNotice = 10;
constexpr LPARAM kTiltYNotice = 11;

struct Row;

/// What the rows of one GT_CST share.
struct Reading {
  CommandProcessor& processor;
  Reply reply;
  std::optional<TiltPair> tilt;  // read once for both its keys
};

struct Row {
  std::string_view key;
  std::int32_t (*add)(Reading& reading, const Row& row);
  std::uint32_t item = 0;
  std::int32_t (*set)(CommandProcessor& processor, const Row& row, std::string_view text) = nullptr;  // null: read-only
  LPARAM notice = 0;
};

// ---- Reading: each adds its field and returns a handler's result

std::int32_t AddText(Reading& reading, const Row& row, const WideText& text) {
  reading.reply.Add(row.key, Escaped(NarrowText(text)));
  return kDone;
}

std::int32_t AddType(Reading& reading, const Row& row) {
  reading.reply.Add(row.key, "RZM");
  return kDone;
}

std::int32_t AddName(Reading& reading, const Row& row) {
  return AddText(reading, row, ReadBrandRecord().name.value_or(WideText()));
}

std::int32_t AddBrand(Reading& reading, const Row& row) { return AddText(reading, row, ReadBrandRecord().brand); }

std::int32_t AddSerial(Reading& reading, const Row& row) {
  char item[kSerialLength + 1] = {};  // and a zero, should the item have none
  QxSystemReadStoreItem(row.item, item);
  item[kSerialLength] = 0;
  reading.reply.Add(row.key, Escaped(item));
  return kDone;
}

std::int32_t AddIdentification(Reading& reading, const Row& row) {
  reading.reply.AddHex(row.key, ReadItem<std::uint16_t>(row.item), 4);
  return kDone;
}

std::int32_t AddZero(Reading& reading, const Row& row) {
  reading.reply.AddInt(row.key, 0);
  return kDone;
}

std::int32_t AddMeterType(Reading& reading, const Row& row) {
  reading.reply.Add(row.key, IsVnsDistanceMeter() ? "VNS" : "NPL");
  return kDone;
}

std::int32_t AddInteger(Reading& reading, const Row& row) {
  reading.reply.AddInt(row.key, ReadItem<std::int32_t>(row.item));
  return kDone;
}

// The half is added before the scaling, away from zero, and what is left of a tenth is cut (kept).
std::int32_t VnsOffset(std::int16_t raw) { return static_cast<std::int32_t>((raw + (raw < 0 ? -0.5 : 0.5)) * -0.1); }

std::int32_t AddOffset(Reading& reading, const Row& row) {
  std::int16_t raw = 0;
  if (!ReadDistanceOffset(reading.processor, &raw)) return kTransferFailed;
  reading.reply.AddInt(row.key, IsVnsDistanceMeter() ? VnsOffset(raw) : raw);
  return kDone;
}

std::int32_t AddTilt(Reading& reading, const Row& row) {
  if (!reading.tilt) {
    TiltPair pair;
    if (!ReadTiltPair(reading.processor, &pair)) return kTransferFailed;
    reading.tilt = pair;
  }
  reading.reply.AddInt(row.key, row.key == kTiltX ? reading.tilt->x : reading.tilt->y);
  return kDone;
}

std::int32_t AddDate(Reading& reading, const Row& row) {
  const std::optional<std::string> text = FormatInspectionDate(ReadItem<double>(row.item));
  if (!text) return kFailed;
  reading.reply.Add(row.key, *text);
  return kDone;
}

// ---- Writing: each returns a handler's result

std::int32_t SetName(CommandProcessor&, const Row&, std::string_view text) {
  const WideText name = WidenText(text);
  if (name.size() > kLongestName) return kBadParameter;
  BrandRecord record = ReadBrandRecord();
  record.name = name;
  WriteBrandRecord(record);
  return kDone;
}

std::int32_t SetSerial(CommandProcessor&, const Row& row, std::string_view text) {
  if (text.size() > kSerialLength) return kBadParameter;
  char item[kSerialLength] = {};
  text.copy(item, sizeof item);
  QxSystemWriteStoreItem(row.item, item);
  return kDone;
}

std::int32_t SetBrand(CommandProcessor&, const Row&, std::string_view text) {
  const std::optional<std::uint8_t> code = BrandCode(text);
  if (!code) return kBadParameter;
  BrandRecord record = ReadBrandRecord();
  record.brand = WidenText(text);
  WriteBrandRecord(record);
  WriteItem(kBrandCode, *code);
  return kDone;
}

std::int32_t SetIdentification(CommandProcessor&, const Row& row, std::string_view text) {
  WriteItem(row.item, static_cast<std::uint16_t>(ParseLeadingHex(text)));
  return kDone;
}

std::int32_t SetInteger(CommandProcessor&, const Row& row, std::string_view text) {
  WriteItem(row.item, ParseLeadingInt(text));
  return kDone;
}

std::int32_t SetOffset(CommandProcessor& processor, const Row&, std::string_view text) {
  const std::int64_t value = ParseLeadingInt(text);
  const std::int64_t raw = IsVnsDistanceMeter() ? value * kVnsScale : value;
  return WriteDistanceOffset(processor, static_cast<std::uint16_t>(raw)) ? kDone : kTransferFailed;
}

std::int32_t SetDate(CommandProcessor&, const Row& row, std::string_view text) {
  const std::optional<double> days = ParseInspectionDate(text);
  if (!days) return kBadParameter;
  WriteItem(row.item, *days);
  return kDone;
}

constexpr Row kRows[] = {
    {"IN_TYP", AddType},
    {"IN_NAM", AddName, kBrandAndName, SetName, 1},
    {"IN_SER", AddSerial, kSerialNumber, SetSerial, 2},
    {"IN_BRD", AddBrand, kBrandAndName, SetBrand, 3},
    {"IN_IDN", AddIdentification, kIdentification, SetIdentification, 4},
    {"IN_EDN", AddZero},
    {"ED_TYP", AddMeterType},
    {"ED_OFS", AddOffset, 0, SetOffset, 5},
    {"AN_VOF", AddInteger, 0x810501, SetInteger, 6},
    {"AN_VOU", AddInteger, 0xE00501, SetInteger, 7},
    {"AN_SAX", AddInteger, 0xE10501, SetInteger, 8},
    {"AN_TAX", AddInteger, 0xE40501, SetInteger, 9},
    {kTiltX, AddTilt},  // written with the next as a pair
    {kTiltY, AddTilt},
    {"TL_XOF", AddInteger, 0x830501, SetInteger, 12},
    {"TL_YOF", AddInteger, 0x840501, SetInteger, 13},
    {"TL_XOU", AddInteger, 0xE20501, SetInteger, 14},
    {"TL_YOU", AddInteger, 0xE30501, SetInteger, 15},
    {"IS_DTM", AddDate, kInspectionDate, SetDate, 16},
};

// The half of the pair that is not given keeps its value.
std::int32_t SetTiltPair(CommandProcessor& processor, const FieldMap& fields) {
  const auto* x = fields.Find(kTiltX);
  const auto* y = fields.Find(kTiltY);
  if (x == nullptr && y == nullptr) return kDone;
  TiltPair pair;
  if ((x == nullptr || y == nullptr) && !ReadTiltPair(processor, &pair)) return kTransferFailed;
  if (x != nullptr) pair.x = static_cast<std::uint16_t>(ParseLeadingInt(*x));
  if (y != nullptr) pair.y = static_cast<std::uint16_t>(ParseLeadingInt(*y));
  if (!WriteTiltPair(processor, pair)) return kTransferFailed;
  if (x != nullptr) processor.PostNotification(QCM_NOTIFY_CONSTANTS_CHANGED, kTiltXNotice);
  if (y != nullptr) processor.PostNotification(QCM_NOTIFY_CONSTANTS_CHANGED, kTiltYNotice);
  return kDone;
}

std::int32_t SetRow(CommandProcessor& processor, const Row& row, const FieldMap& fields) {
  if (row.key == kTiltX) return SetTiltPair(processor, fields);
  const auto* text = fields.Find(row.key);
  if (text == nullptr || row.set == nullptr) return kDone;
  const std::int32_t result = row.set(processor, row, *text);
  if (result == kDone) processor.PostNotification(QCM_NOTIFY_CONSTANTS_CHANGED, row.notice);
  return result;
}

}  // namespace

std::int32_t StCst(CommandProcessor& processor, const FieldMap& fields) {
  for (const Row& row : kRows) {
    const std::int32_t result = SetRow(processor, row, fields);
    if (result != kDone) return result;
  }
  return kDone;
}

std::int32_t GtCst(CommandProcessor& processor, const FieldMap& fields) {
  Reading reading = {processor, Reply("CST"), std::nullopt};
  for (const Row& row : kRows) {
    if (!fields.Has(row.key)) continue;
    const std::int32_t result = row.add(reading, row);
    if (result != kDone) return result;
  }
  processor.SendReply(reading.reply);
  return kDone;
}

}  // namespace qxcm
