// Holds the frame decoder to its promises on any stream of bytes.
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "promise.h"
#include "protocol/frame.h"
#include "protocol/frame_decoder.h"
#include "targets.h"

namespace fuzz {

namespace {

using qxcm::FrameEvent;
using Events = std::vector<std::pair<FrameEvent, std::string>>;

/// What the decoder makes of one chunk.
void Feed(qxcm::FrameDecoder& decoder, std::string_view chunk, Events& events) {
  for (;;) {
    const FrameEvent event = decoder.Next(chunk);
    if (event == FrameEvent::kNone) break;
    events.emplace_back(event, event == FrameEvent::kCommand ? decoder.text() : std::string_view());
  }
  Promise(chunk.empty(), "without an event all bytes are consumed");
}

/// The stream in chunks whose lengths are taken from the stream itself, or all of one length.
Events FeedInChunks(std::string_view stream, std::size_t length) {
  qxcm::FrameDecoder decoder;
  Events events;
  while (!stream.empty()) {
    const std::size_t wanted = length != 0 ? length : static_cast<unsigned char>(stream.front()) % 29 + 1u;
    const std::size_t taken = std::min(stream.size(), wanted);
    Feed(decoder, stream.substr(0, taken), events);
    stream.remove_prefix(taken);
  }
  return events;
}

/// The rules of the wire in their plainest form, one byte after the other.
Events ByTheRules(std::string_view stream) {
  Events events;
  std::string frame;
  for (const char byte : stream) {
    if (byte == qxcm::kAck || byte == qxcm::kNak) continue;
    if (byte == qxcm::kEnq) {
      events.emplace_back(FrameEvent::kEnquiry, "");
      frame.clear();
    } else if (byte == qxcm::kCr || byte == qxcm::kLf) {
      if (frame.size() >= 5 && frame[1] == '<') {
        const char received = frame.back();
        frame.pop_back();
        const bool good = received == qxcm::Checksum(frame);
        frame = frame.substr(2, frame.size() - 3);
        if (good) events.emplace_back(FrameEvent::kCommand, frame.c_str());  // up to the first NUL
        if (!good) events.emplace_back(FrameEvent::kBadChecksum, "");
      }
      frame.clear();
    } else if (frame.size() >= 8232) {
      frame.clear();
    } else if (!frame.empty() || byte == 'C') {
      frame.push_back(byte);
    }
  }
  return events;
}

/// The frame that a controller sends for a command.
std::string Framed(std::string_view text) {
  std::string frame = "C<";
  frame.append(text).push_back('>');
  frame.push_back(qxcm::Checksum(frame));
  frame.push_back('\r');
  return frame;
}

void NextGoodFrameArrives(std::string_view stream) {
  qxcm::FrameDecoder decoder;
  Events events;
  Feed(decoder, stream, events);
  Feed(decoder, "\r", events);
  events.clear();
  Feed(decoder, Framed("GT_CLK"), events);
  Promise(events == Events{{FrameEvent::kCommand, "GT_CLK"}}, "the next good frame arrives");
  Feed(decoder, stream, events);
  decoder.Discard();
  events.clear();
  Feed(decoder, Framed("GT_CLK"), events);
  Promise(events == Events{{FrameEvent::kCommand, "GT_CLK"}}, "nothing is left after a discard");
}

}  // namespace

void FuzzFrameDecoder(const std::uint8_t* data, std::size_t size) {
  const std::string_view stream(reinterpret_cast<const char*>(data), size);
  const Events events = FeedInChunks(stream, std::max<std::size_t>(size, 1));
  Promise(events == ByTheRules(stream), "the stream is decoded by the rules");
  Promise(events == FeedInChunks(stream, 1), "a stream decodes the same byte by byte");
  Promise(events == FeedInChunks(stream, 0), "a stream decodes the same in any chunks");
  for (const auto& [event, text] : events) {
    if (text.empty()) continue;
    Promise(FeedInChunks(Framed(text), size) == Events{{event, text}}, "a command framed again is the same command");
  }
  NextGoodFrameArrives(stream);
}

}  // namespace fuzz
