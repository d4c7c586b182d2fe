// The simulated parameter block, and ParamBlk's two calls. Entries come and go in the state document only.
#include "instrument/parameter_blocks.h"

#include <algorithm>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "common/calls/entry.h"
#include "common/text/hex.h"
#include "instrument/instrument_libraries.h"
#include "instrument/json_values.h"

namespace host::instrument {
namespace {

constexpr std::size_t kNumbers = 256;

static_assert(sizeof(ParameterRecord::value) == kLongestParameterBlock);

std::uint8_t NumberOf(const std::string& text) {
  for (std::size_t number = 0; number < kNumbers; ++number) {
    if (text == std::to_string(number)) return static_cast<std::uint8_t>(number);
  }
  throw StateError("a number from 0 to 255 is expected");
}

void MergeEntry(const std::string& name, const Json& patch, ParameterBlocks* blocks) {
  const std::uint8_t number = NumberOf(name);
  if (patch.is_null()) {
    blocks->erase(number);
    return;
  }
  auto bytes = BytesOf(patch);
  if (bytes.size() > kLongestParameterBlock) throw StateError("more than 254 bytes");
  (*blocks)[number] = std::move(bytes);
}

/// Of an entry of 255 bytes, which only a test can make, the record tells the length and holds one less.
std::size_t HeldBytes(const ParameterRecord& record) {
  return std::min<std::size_t>(record.length, kLongestParameterBlock);
}

/// Whether there is an entry with the record's number.
bool Fill(ParameterRecord* record) {
  return ParameterBlock().See([=](const ParameterBlocks& blocks) {
    const auto found = blocks.find(record->number);
    if (found == blocks.end()) return false;
    record->length = static_cast<std::uint8_t>(found->second.size());
    std::copy_n(found->second.begin(), HeldBytes(*record), record->value);
    return true;
  });
}

bool Replace(const ParameterRecord& record) {
  if (record.length > kLongestParameterBlock) return false;
  const int error = ParameterBlock().Change([&](ParameterBlocks& blocks) {
    const auto found = blocks.find(record.number);
    if (found == blocks.end()) return ENOENT;
    found->second.assign(record.value, record.value + record.length);
    return 0;
  });
  return error == 0;
}

CallValues NumberArgument(const ParameterRecord* record) {
  if (record == nullptr) return {nullptr};
  return {std::int64_t{record->number}};
}

CallValues NumberAndValue(const ParameterRecord* record) {
  CallValues values = NumberArgument(record);
  const bool has_value = record != nullptr && record->length <= kLongestParameterBlock;
  if (has_value) values.emplace_back(HexOf(record->value, record->length));
  return values;
}

Answer<BOOL> FillAndTell(ParameterRecord* record) {
  if (record == nullptr || !Fill(record)) return {FALSE, {}};
  return {TRUE, {HexOf(record->value, HeldBytes(*record))}};
}

}  // namespace

ParameterBlocks StandardParameterBlocks() { return {{std::uint8_t{7}, {1, 2, 3, 4}}}; }

Kept<ParameterBlocks>& ParameterBlock() {
  static auto* block = new Kept<ParameterBlocks>(StandardParameterBlocks());  // calls may come while the process ends
  return *block;
}

Json ParameterBlocksToJson(const ParameterBlocks& blocks) {
  Json json = Json::object();
  for (const auto& entry : blocks) json[std::to_string(entry.first)] = HexOf(entry.second);
  return json;
}

void MergeParameterBlocks(const Json& patch, ParameterBlocks* blocks) {
  ForEachMember(patch, [blocks](const std::string& name, const Json& member) { MergeEntry(name, member, blocks); });
}

}  // namespace host::instrument

using namespace host::instrument;

BOOL WINAPI GetParameterItem(ParameterRecord* record) {
  const auto args = [=] { return NumberArgument(record); };
  return host::Entry("ParamBlk", "GetParameterItem", true, args, [=] { return FillAndTell(record); }).result;
}

BOOL WINAPI ReplaceParameterItem(const ParameterRecord* record) {
  const auto args = [=] { return NumberAndValue(record); };
  const auto real = [=]() -> BOOL { return record != nullptr && Replace(*record) ? TRUE : FALSE; };
  return host::Entry("ParamBlk", "ReplaceParameterItem", true, args, real);
}
