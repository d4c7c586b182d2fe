#include "qxsim/traffic.h"

#include <nlohmann/json.hpp>

#include "common/calls/calls.h"
#include "qxsim/line_text.h"

namespace qxsim {
namespace {

constexpr char kEnq = 0x05;
constexpr char kAck = 0x06;
constexpr char kNak = 0x15;
constexpr std::size_t kShortestFrame = 5;
constexpr std::size_t kLongestFrame = 8232;

char ChecksumOf(std::string_view bytes) {
  unsigned sum = 0;
  for (const char byte : bytes) sum += static_cast<unsigned char>(byte);
  return static_cast<char>(sum % 64 + 0x20);
}

}  // namespace

const char* KindName(TrafficKind kind) {
  switch (kind) {
    case TrafficKind::kCommand:
      return "command";
    case TrafficKind::kReply:
      return "reply";
    case TrafficKind::kMessage:
      return "message";
    case TrafficKind::kAck:
      return "ack";
    case TrafficKind::kNak:
      return "nak";
    case TrafficKind::kEnq:
      return "enq";
    case TrafficKind::kNoise:
      break;
  }
  return "noise";
}

std::vector<TrafficItem> TrafficDecoder::Feed(std::string_view bytes) {
  std::vector<TrafficItem> items;
  for (const char byte : bytes) Take(byte, &items);
  FlushNoise(&items);
  return items;
}

void TrafficDecoder::Take(char byte, std::vector<TrafficItem>* items) {
  if (byte == kEnq || byte == kAck || byte == kNak) {
    // Only ENQ cuts a frame short; the other two are passed over within one.
    if (byte == kEnq) noise_ += std::exchange(frame_, {});
    FlushNoise(items);
    items->push_back({byte == kEnq ? TrafficKind::kEnq : byte == kAck ? TrafficKind::kAck : TrafficKind::kNak, {}});
  } else if (byte == '\r' || byte == '\n') {
    FinishFrame(items);
  } else if (frame_.size() >= kLongestFrame) {
    noise_ += std::exchange(frame_, {}) + byte;
  } else if (!frame_.empty() || StartsFrame(byte)) {
    FlushNoise(items);
    frame_ += byte;
  } else {
    noise_ += byte;
  }
}

void TrafficDecoder::FinishFrame(std::vector<TrafficItem>* items) {
  std::string frame = std::exchange(frame_, {});
  const bool whole = frame.size() >= kShortestFrame && frame[1] == '<' &&
                     ChecksumOf(std::string_view(frame).substr(0, frame.size() - 1)) == frame.back();
  if (whole) {
    items->push_back({KindOf(frame[0]), frame.substr(2, frame.size() - 4)});
  } else {
    noise_ += frame;
  }
  FlushNoise(items);
}

void TrafficDecoder::FlushNoise(std::vector<TrafficItem>* items) {
  if (!noise_.empty()) items->push_back({TrafficKind::kNoise, std::exchange(noise_, {})});
}

bool TrafficDecoder::StartsFrame(char byte) const { return in_ ? byte == 'C' : byte == 'R' || byte == 'A'; }

TrafficKind TrafficDecoder::KindOf(char letter) const {
  if (in_) return TrafficKind::kCommand;
  return letter == 'A' ? TrafficKind::kMessage : TrafficKind::kReply;
}

std::string ToJsonText(const TrafficEvent& event) {
  const nlohmann::ordered_json json = {{"n", event.n},
                                       {"at", ShownTime(event.at)},
                                       {"way", event.in ? "in" : "out"},
                                       {"kind", KindName(event.kind)},
                                       {"text", event.text},
                                       {"port", event.port}};
  return json.dump();
}

void TrafficLog::Feed(std::string_view port, bool in, std::string_view bytes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto decoder = decoders_.try_emplace({std::string(port), in}, TrafficDecoder(in)).first;
  for (const TrafficItem& item : decoder->second.Feed(bytes)) {
    if (listeners_.empty()) {
      ++last_event_;
      continue;
    }
    const TrafficEvent event{++last_event_, host::MillisecondsSinceStart(), std::string(port), in,
                             item.kind,     ReadableText(item.text)};
    for (const auto& [number, listener] : listeners_) listener(event);
  }
}

std::uint64_t TrafficLog::Subscribe(Listener listener) {
  const std::lock_guard<std::mutex> lock(mutex_);
  listeners_.emplace(++last_listener_, std::move(listener));
  return last_listener_;
}

void TrafficLog::Unsubscribe(std::uint64_t number) {
  const std::lock_guard<std::mutex> lock(mutex_);
  listeners_.erase(number);
}

}  // namespace qxsim
