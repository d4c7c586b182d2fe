// The dispatcher's loop and the road of one command through it.
#include "protocol/command_processor.h"

#include <exception>

#include "platform/windows_api.h"
#include "protocol/command_table.h"
#include "protocol/frame.h"

namespace qxcm {

namespace {

constexpr std::string_view kUnknownCommand = "ER_CMD";
constexpr std::string_view kParameterError = "ER_PRM";
constexpr std::string_view kOperationFailed = "ER_FAL";
constexpr int kStartAttempts = 20;
constexpr DWORD kStartPause = 10;  // milliseconds

void WakeInstrument() {
  SetSystemPowerState(nullptr, kPowerStateOn, kPowerForce);
  SystemIdleTimerReset();
}

std::int32_t CallHandler(CommandHandler handler, CommandProcessor& processor, const FieldMap& fields) {
  try {
    return handler(processor, fields);
  } catch (const std::exception&) {
    return kFailed;  // out of memory, or a lock the platform refused
  }
}

}  // namespace

bool CommandProcessor::Start() {
  stop_.Reset();
  for (int attempt = 1; !thread_.Create([this] { Run(); }); ++attempt) {
    if (attempt == kStartAttempts) return false;
    Sleep(kStartPause);
  }
  return thread_.Start();
}

void CommandProcessor::Run() {
  for (;;) {
    const Woken woken = WaitForEither(stop_, commands_.message_event());
    if (woken == Woken::kFirst) return;
    if (woken == Woken::kSecond) HandleOne();
  }
}

void CommandProcessor::HandleOne() {
  if (!commands_.Pop(text_)) return;
  WaitForRoom();
  const std::string_view error = Dispatch();
  if (!error.empty()) service_.SendReply(error);
  service_.SendControlByte(kAck);
}

// Returns the generic error to answer, empty for none.
std::string_view CommandProcessor::Dispatch() {
  std::string_view word;
  const bool fields_are_good = SplitCommand(text_, &word, &fields_);
  const CommandHandler handler = FindCommand(word, tools_mode_.load(std::memory_order_relaxed));
  if (handler == nullptr) return kUnknownCommand;
  WakeInstrument();
  if (!fields_are_good) return kParameterError;
  switch (CallHandler(handler, *this, fields_)) {
    case kDone:
      return {};
    case kBadParameter:
      return kParameterError;
    default:
      return kOperationFailed;
  }
}

}  // namespace qxcm
