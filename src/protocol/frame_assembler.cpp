// From received bytes to queued commands.
#include "protocol/frame_assembler.h"

#include <string_view>

#include "protocol/frame.h"

namespace qxcm {

namespace {
constexpr std::string_view kAckByte(&kAck, 1);
constexpr std::string_view kNakByte(&kNak, 1);
}  // namespace

void FrameAssembler::AssembleReceivedBytes(Link& link) {
  Guard guard(lock_);
  link.TakeReceived(received_);
  std::string_view bytes = received_;
  while (!stop_.load(std::memory_order_acquire)) {
    switch (decoder_.Next(bytes)) {
      case FrameEvent::kNone:
        return;
      case FrameEvent::kEnquiry:
        link.Write(kAckByte);
        break;
      case FrameEvent::kBadChecksum:
        link.Write(kNakByte);
        break;
      case FrameEvent::kCommand:
        commands_.Push(decoder_.text());
        break;
    }
  }
}

void FrameAssembler::Discard() {
  Guard guard(lock_);
  received_.clear();
  decoder_.Discard();
}

}  // namespace qxcm
