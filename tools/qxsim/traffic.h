// The bytes on the instrument's lines as a person reads them: frames, control bytes and noise, numbered.
//
// Wire format: type letter, "<", text, ">", checksum character, CR (received frames may end in LF).
#ifndef QXSIM_TRAFFIC_H
#define QXSIM_TRAFFIC_H

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qxsim {

enum class TrafficKind { kCommand, kReply, kMessage, kAck, kNak, kEnq, kNoise };

/// The kind's name in the API: "command", "reply" ...
const char* KindName(TrafficKind kind);

struct TrafficItem {
  TrafficKind kind = TrafficKind::kNoise;
  std::string text;  ///< a frame's text or the noise, bytes as on the line; empty for control bytes
};

/// Cuts one direction of one line into items. Not thread-safe.
class TrafficDecoder {
 public:
  /// \param in  true for the direction controller -> instrument, whose frames are commands
  explicit TrafficDecoder(bool in) : in_(in) {}

  /// The items that these bytes complete. Noise outside a frame is never held back.
  std::vector<TrafficItem> Feed(std::string_view bytes);

 private:
  void Take(char byte, std::vector<TrafficItem>* items);
  void FinishFrame(std::vector<TrafficItem>* items);
  void FlushNoise(std::vector<TrafficItem>* items);
  bool StartsFrame(char byte) const;
  TrafficKind KindOf(char letter) const;

  bool in_;
  std::string frame_;  // from the type letter on, without the end byte
  std::string noise_;
};

struct TrafficEvent {
  std::uint64_t n = 0;  ///< from 1
  double at = 0;        ///< milliseconds since start
  std::string port;     ///< "COM5:" or "COMBT:"
  bool in = false;      ///< controller -> instrument
  TrafficKind kind = TrafficKind::kNoise;
  std::string text;  ///< UTF-8: the line's ANSI text, control characters as \xNN
};

/// The event as one JSON object, without a line end.
std::string ToJsonText(const TrafficEvent& event);

/// All lines' traffic, told to whoever listens. Any thread.
class TrafficLog {
 public:
  using Listener = std::function<void(const TrafficEvent&)>;

  /// Takes what was seen on a port; called on the threads that read and write it.
  void Feed(std::string_view port, bool in, std::string_view bytes);

  /// The listener is called under the log's lock, in order: it must return soon and not call back.
  /// Returns a number for Unsubscribe.
  std::uint64_t Subscribe(Listener listener);
  /// After it returns the listener is not called again.
  void Unsubscribe(std::uint64_t number);

 private:
  std::mutex mutex_;  // guards all below
  std::map<std::pair<std::string, bool>, TrafficDecoder> decoders_;
  std::map<std::uint64_t, Listener> listeners_;
  std::uint64_t last_event_ = 0;
  std::uint64_t last_listener_ = 0;
};

}  // namespace qxsim

#endif
