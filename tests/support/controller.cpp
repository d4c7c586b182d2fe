#include "support/controller.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qxtest::wire {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kSendPatience = 10000;

[[noreturn]] void Fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

Received Decode(const std::string& frame) {
  const bool whole = frame.size() >= 4 && frame[1] == '<' && (frame[0] == 'R' || frame[0] == 'A') &&
                     frame[frame.size() - 2] == '>' && Checksum(frame.substr(0, frame.size() - 1)) == frame.back();
  if (!whole) return {Received::Kind::kBad, frame};
  const auto kind = frame[0] == 'R' ? Received::Kind::kReply : Received::Kind::kMessage;
  return {kind, frame.substr(2, frame.size() - 4)};
}

}  // namespace

char Checksum(const std::string& bytes) {
  unsigned char sum = 0;
  for (const char byte : bytes) sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(byte));
  return static_cast<char>((sum & 0x3F) + 0x20);
}

std::string CommandFrame(const std::string& text) {
  const std::string body = "C<" + text + ">";
  return body + Checksum(body) + "\r";
}

Controller::Controller(const std::string& path) {
  line_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (line_ < 0) Fail(path);
  termios settings = {};
  if (tcgetattr(line_, &settings) != 0) Fail(path);
  cfmakeraw(&settings);
  settings.c_cflag |= CLOCAL | CREAD;
  if (tcsetattr(line_, TCSANOW, &settings) != 0) Fail(path);
}

Controller::~Controller() { close(line_); }

void Controller::Send(const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    pollfd ready = {line_, POLLOUT, 0};
    if (poll(&ready, 1, kSendPatience) <= 0) throw std::system_error(ETIMEDOUT, std::generic_category(), "send");
    const ssize_t count = write(line_, bytes.data() + done, bytes.size() - done);
    if (count > 0) {
      done += static_cast<std::size_t>(count);
    } else if (errno != EAGAIN && errno != EINTR) {
      Fail("send");
    }
  }
}

std::optional<Received> Controller::Read(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  for (;;) {
    if (const auto received = Take()) return received;
    if (!Fill(deadline)) return std::nullopt;
  }
}

Answer Controller::Command(const std::string& text, std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  Answer answer;
  Send(CommandFrame(text));
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const auto received = Read(left);
    if (!received) return answer;
    if (received->kind == Received::Kind::kReply) {
      answer.replies.push_back(received->text);
    } else if (received->kind == Received::Kind::kMessage) {
      answer.messages.push_back(received->text);
    } else {
      answer.acknowledged = received->kind == Received::Kind::kAcknowledged;
      return answer;
    }
  }
}

bool Controller::Fill(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  pollfd ready = {line_, POLLIN, 0};
  if (left < 0 || poll(&ready, 1, static_cast<int>(left)) <= 0) return false;
  char bytes[4096];
  const ssize_t count = read(line_, bytes, sizeof bytes);
  if (count <= 0) return false;
  pending_.append(bytes, static_cast<std::size_t>(count));
  return true;
}

// A checksum character is never a control byte, and texts hold none.
std::optional<Received> Controller::Take() {
  if (pending_.empty()) return std::nullopt;
  if (pending_[0] == kAck || pending_[0] == kNak) {
    const auto kind = pending_[0] == kAck ? Received::Kind::kAcknowledged : Received::Kind::kRefused;
    pending_.erase(0, 1);
    return Received{kind, {}};
  }
  const std::size_t end = pending_.find('\r');
  if (end == std::string::npos) return std::nullopt;
  const std::string frame = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  return Decode(frame);
}

}  // namespace qxtest::wire
