// The controller's end of a serial line, as bytes and frames, with a codec of its own.
#ifndef QXTEST_SUPPORT_CONTROLLER_H
#define QXTEST_SUPPORT_CONTROLLER_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace qxtest::wire {

constexpr char kEnq = 0x05;
constexpr char kAck = 0x06;
constexpr char kNak = 0x15;

/// "C<" text ">" checksum CR.
std::string CommandFrame(const std::string& text);
/// The checksum character over these bytes.
char Checksum(const std::string& bytes);

/// One thing the instrument sent.
struct Received {
  enum class Kind { kReply, kMessage, kAcknowledged, kRefused, kBad } kind = Kind::kBad;
  std::string text;  ///< of a reply or message; the raw bytes when bad

  bool operator==(const Received& other) const { return kind == other.kind && text == other.text; }
};

/// What came up to and with the ACK of a command.
struct Answer {
  std::vector<std::string> replies;   ///< texts of "R" frames
  std::vector<std::string> messages;  ///< texts of "A" frames
  bool acknowledged = false;          ///< else the time was over, or a NAK or a bad frame came
};

class Controller {
 public:
  /// Opens a tty, raw. Throws std::system_error.
  explicit Controller(const std::string& path);
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;
  ~Controller();

  /// Sends all bytes; throws std::system_error when the line takes none for 10 seconds.
  void Send(const std::string& bytes);
  /// The next thing received; nothing when the time is over.
  std::optional<Received> Read(std::chrono::milliseconds time);
  /// Sends a command and reads up to its ACK.
  Answer Command(const std::string& text, std::chrono::milliseconds time = std::chrono::seconds(10));

 private:
  bool Fill(std::chrono::steady_clock::time_point deadline);
  std::optional<Received> Take();

  int line_ = -1;
  std::string pending_;
};

}  // namespace qxtest::wire

#endif
