// RD_PBK, WR_PBK: numbered parameters as bytes, from the store or, for other numbers, from the platform's parameter
// block.
//   C<RD_PBK,PID=165>              ->  R<PBK,PID=165,VAL=02>, ACK
//   C<WR_PBK,PID=193,VAL=2B1A>     ->  ACK
// A write never changes a parameter's length. Every failure is "ER_PRM".
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "commands/instrument/store_items.h"
#include "commands/measure/valuetext/hex_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/instrument_libraries.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kNumber = "PID";
constexpr std::string_view kValue = "VAL";
constexpr std::int32_t kHighestNumber = 255;

using Value = std::vector<std::uint8_t>;

std::optional<Value> ReadItemBytes(std::uint32_t item) {
  Value value(StoreItemSize(item));
  if (value.empty() || QxSystemReadStoreItem(item, value.data()) != 0) return std::nullopt;
  return value;
}

bool WriteItemBytes(std::uint32_t item, const Value& value) {
  if (value.size() != StoreItemSize(item)) return false;
  QxSystemWriteStoreItem(item, value.data());
  return true;
}

std::optional<ParameterRecord> FetchRecord(std::int32_t number) {
  ParameterRecord record = {};
  if (number < 0 || number > kHighestNumber) return std::nullopt;
  record.number = static_cast<std::uint8_t>(number);
  if (!GetParameterItem(&record) || record.length > sizeof record.value) return std::nullopt;
  return record;
}

std::optional<Value> ReadRecordBytes(std::int32_t number) {
  const std::optional<ParameterRecord> record = FetchRecord(number);
  if (!record || record->length == 0) return std::nullopt;
  return Value(record->value, record->value + record->length);
}

bool WriteRecordBytes(std::int32_t number, const Value& value) {
  std::optional<ParameterRecord> record = FetchRecord(number);
  if (!record || record->length != value.size()) return false;
  std::copy(value.begin(), value.end(), record->value);
  return ReplaceParameterItem(&*record) != FALSE;
}

}  // namespace

std::int32_t RdPbk(CommandProcessor& processor, const FieldMap& fields) {
  const auto* text = fields.Find(kNumber);
  if (text == nullptr) return kBadParameter;
  const std::int32_t number = ParseLeadingInt(*text);
  const std::uint32_t item = StoreItemOfNumber(number);
  const std::optional<Value> value = item != 0 ? ReadItemBytes(item) : ReadRecordBytes(number);
  if (!value) return kBadParameter;
  std::string hex;
  BytesToHex(value->data(), value->size(), &hex);
  processor.SendReply(Reply("PBK").Add(kNumber, *text).Add(kValue, hex));
  return kDone;
}

std::int32_t WrPbk(CommandProcessor&, const FieldMap& fields) {
  const auto* text = fields.Find(kNumber);
  const auto* hex = fields.Find(kValue);
  Value value;
  if (text == nullptr || hex == nullptr || !HexToBytes(*hex, &value)) return kBadParameter;
  const std::int32_t number = ParseLeadingInt(*text);
  const std::uint32_t item = StoreItemOfNumber(number);
  const bool written = item != 0 ? WriteItemBytes(item, value) : WriteRecordBytes(number, value);
  return written ? kDone : kBadParameter;
}

}  // namespace qxcm
