// GT_BAT: battery levels.
//   C<GT_BAT,SEL,GEN>  ->  R<BAT,GEN=75,SEL=RGT>, ACK            (its own order)
#include "commands/services/battery.h"

#include <cstdint>
#include <string_view>

#include "platform/lock.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kSources[] = {"LFT", "RGT", "EXT"};
constexpr std::uint32_t kExternal = 2;

/// What is left in all: the external supply's level while it is the source, else the mean of both batteries.
std::uint32_t General(const BatteryLevels& levels) {
  if (levels.source == kExternal) return levels.external;
  return static_cast<std::uint32_t>((std::uint64_t{levels.left} + levels.right) / 2);
}

std::string_view Source(const BatteryLevels& levels) {
  return levels.source < std::size(kSources) ? kSources[levels.source] : std::string_view();
}

}  // namespace

void BatteryState::HandleEvent(DWORD mask) {
  if ((mask & BatteryEventMask()) == 0) return;
  Guard guard(service_.lock());
  QueryBattery(&levels_);
}

BatteryLevels BatteryState::levels() {
  Guard guard(service_.lock());
  return levels_;
}

std::int32_t GtBat(CommandProcessor& processor, const FieldMap& fields) {
  const BatteryLevels levels = processor.service().battery().levels();
  Reply reply("BAT");
  const auto add = [&](std::string_view key, std::uint32_t level) {
    if (fields.Has(key)) reply.AddInt(key, static_cast<std::int32_t>(level));
  };
  add("GEN", General(levels));
  add("LFT", levels.left);
  add("RGT", levels.right);
  add("EXT", levels.external);
  if (fields.Has("SEL")) reply.Add("SEL", Source(levels));
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
