// ST_PWR: switches the controller off, puts it to sleep or restarts it.
//   C<ST_PWR,MAN=STB>  ->  ACK
// What the platform makes of it is not looked at.
#include <cstdint>
#include <string_view>

#include "platform/windows_api.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kMode = "MAN";

// The utility's handles are left open: nothing is left to use them for, the controller goes off (kept).
void SwitchOff() {
  WCHAR command_line[] = TEXT("-fulloff");
  PROCESS_INFORMATION process = {};
  CreateProcessW(TEXT("opvutil.exe"), command_line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process);
}

void Suspend() { SetSystemPowerState(nullptr, kPowerStateSuspend, 0); }
void Restart() { SetSystemPowerState(nullptr, kPowerStateReset, 0); }

struct Row {
  std::string_view mode;
  void (*action)();
};
constexpr Row kRows[] = {{"DWN", SwitchOff}, {"STB", Suspend}, {"RBT", Restart}};

}  // namespace

std::int32_t StPwr(CommandProcessor&, const FieldMap& fields) {
  const auto* mode = fields.Find(kMode);
  if (mode == nullptr) return kBadParameter;
  for (const Row& row : kRows) {
    if (row.mode != *mode) continue;
    row.action();
    return kDone;
  }
  return kBadParameter;
}

}  // namespace qxcm
