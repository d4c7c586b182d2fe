// The key thread.
#include "api/key_channel.h"

#include <cstring>
#include <optional>
#include <stdexcept>

#include "platform/lock.h"
#include "platform/shared_block.h"

namespace qxcm {

namespace {

// Shared with the process that reports keys: it writes the code (unsigned, 32 bits, little-endian) and sets the event.
constexpr WCHAR kKeyEvent[] = TEXT("KORAX-HALVERN.RZM.CommKeyDownEv");
constexpr WCHAR kKeyBlock[] = TEXT("KORAX-HALVERN.RZM.CommKeyData");
constexpr WCHAR kKeyMutex[] = TEXT("KORAX-HALVERN.RZM.CommKeyDataMtx");

constexpr DWORD kRetryPause = 50;  // milliseconds after the platform refused the mutex

/// Nothing when the stop event came first: another process may keep the mutex for good.
std::optional<std::uint32_t> ReadKey(SharedBlock& block, const Event& stop) {
  std::uint32_t code = 0;
  if (!block.mutex().EnterUnless(stop)) return std::nullopt;
  std::memcpy(&code, block.bytes(), sizeof code);
  block.mutex().Leave();
  return code;
}

}  // namespace

void KeyChannel::Start() {
  if (!thread_.finished()) return;
  thread_.Join();
  stop_.Reset();
  if (thread_.Create([this] { Run(); })) thread_.Start();
}

void KeyChannel::Stop() {
  stop_.Set();
  thread_.Join();
}

void KeyChannel::Run() {
  try {
    DeliverKeys();
  } catch (const std::runtime_error&) {
    // The platform has no event, mutex or block to give: the service goes on without keys.
  }
}

// Announcements are flags, not counted: what is announced while a key is delivered is the next one.
void KeyChannel::DeliverKeys() {
  Event announced(kKeyEvent);
  SharedBlock block(kKeyBlock, kKeyMutex, sizeof(std::uint32_t));
  for (;;) {
    const Woken woken = WaitForEither(stop_, announced);
    if (woken == Woken::kFirst) return;
    if (woken == Woken::kSecond) DeliverKey(announced, block);
  }
}

void KeyChannel::DeliverKey(Event& announced, SharedBlock& block) {
  try {
    const std::optional<std::uint32_t> code = ReadKey(block, stop_);
    if (!code) return;
    announced.Reset();
    handler_(*code);
  } catch (const std::runtime_error&) {
    WaitFor(stop_, kRetryPause);  // the announcement stays: another attempt follows
  }
}

}  // namespace qxcm
