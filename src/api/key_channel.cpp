// The key thread.
#include "api/key_channel.h"

#include <cstring>
#include <stdexcept>

#include "platform/lock.h"
#include "platform/shared_block.h"

namespace qxcm {

namespace {

// Shared with the process that reports keys: it writes the code (unsigned, 32 bits, little-endian) and sets the event.
constexpr WCHAR kKeyEvent[] = TEXT("KORAX-HALVERN.RZM.CommKeyDownEv");
constexpr WCHAR kKeyBlock[] = TEXT("KORAX-HALVERN.RZM.CommKeyData");
constexpr WCHAR kKeyMutex[] = TEXT("KORAX-HALVERN.RZM.CommKeyDataMtx");

std::uint32_t ReadKey(SharedBlock& block) {
  std::uint32_t code = 0;
  Guard guard(block.mutex());
  std::memcpy(&code, block.bytes(), sizeof code);
  return code;
}

}  // namespace

void KeyChannel::Start() {
  if (!thread_.finished()) return;
  thread_.Join();
  stop_.Reset();
  if (thread_.Create([this] { Run(); })) thread_.Resume();
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

void KeyChannel::DeliverKeys() {
  Event announced(kKeyEvent);
  SharedBlock block(kKeyBlock, kKeyMutex, sizeof(std::uint32_t));
  for (;;) {
    const Woken woken = WaitForEither(stop_, announced);
    if (woken == Woken::kFirst) return;
    if (woken == Woken::kNeither) continue;
    const std::uint32_t code = ReadKey(block);
    announced.Reset();
    handler_(code);
  }
}

}  // namespace qxcm
