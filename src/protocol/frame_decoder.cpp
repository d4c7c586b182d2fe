// The byte rules of the receiving side.
#include "protocol/frame_decoder.h"

#include <algorithm>
#include <cstddef>

#include "protocol/frame.h"

namespace qxcm {

namespace {

constexpr std::size_t kShortestFrame = 5;  // "C<", one character, ">", checksum

bool IsControl(char byte) { return byte == kEnq || byte == kAck || byte == kNak || byte == kCr || byte == kLf; }

/// The number of bytes before the first control byte.
std::size_t OrdinaryRun(std::string_view bytes) {
  constexpr auto kPastControls = static_cast<unsigned char>(kNak + 1);
  for (std::size_t at = 0;; ++at) {
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) >= kPastControls) ++at;
    if (at == bytes.size() || IsControl(bytes[at])) return at;
  }
}

}  // namespace

FrameEvent FrameDecoder::Next(std::string_view& bytes) {
  if (done_) Discard();
  while (!bytes.empty()) {
    const std::size_t run = OrdinaryRun(bytes);
    Append(bytes.substr(0, run));
    bytes.remove_prefix(run);
    if (bytes.empty()) break;
    const char control = bytes.front();
    bytes.remove_prefix(1);
    if (control == kEnq) {
      frame_.clear();
      return FrameEvent::kEnquiry;
    }
    if (control == kCr || control == kLf) {
      const FrameEvent event = Validate();
      if (event != FrameEvent::kNone) return event;
    }
  }
  return FrameEvent::kNone;
}

void FrameDecoder::Append(std::string_view run) {
  while (!run.empty()) {
    if (frame_.empty()) {
      const std::size_t begin = run.find(kCommandLetter);
      if (begin == std::string_view::npos) return;
      run.remove_prefix(begin);
    }
    const std::size_t room = std::min(kFrameLimit - frame_.size(), run.size());
    frame_.append(run.substr(0, room));
    run.remove_prefix(room);
    if (run.empty()) return;
    frame_.clear();  // the frame is full: it is lost, and the byte that did not fit with it
    run.remove_prefix(1);
  }
}

FrameEvent FrameDecoder::Validate() {
  done_ = true;
  if (frame_.size() < kShortestFrame || frame_[1] != kTextBegin) {
    Discard();
    return FrameEvent::kNone;
  }
  const std::string_view checked(frame_.data(), frame_.size() - 1);
  if (Checksum(checked) != frame_.back()) return FrameEvent::kBadChecksum;
  // The byte before the checksum is taken off without a look: it stands where ">" belongs.
  text_ = checked.substr(2, checked.size() - 3);
  text_ = text_.substr(0, text_.find('\0'));
  return FrameEvent::kCommand;
}

void FrameDecoder::Discard() {
  frame_.clear();
  text_ = {};
  done_ = false;
}

}  // namespace qxcm
