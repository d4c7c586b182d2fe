// What goes over the line of a running qxsim, byte for byte.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "support/qxsim_process.h"

namespace {

using std::chrono::steady_clock;

constexpr char kAck = 0x06;
constexpr std::chrono::seconds kPatience{10};
constexpr int kSilenceMs = 200;

class Bytes : public testing::Test {
 protected:
  Bytes() : qxsim_({"--still"}), line_(open(qxsim_.port().c_str(), O_RDWR | O_NOCTTY)) {
    termios settings;
    tcgetattr(line_, &settings);
    cfmakeraw(&settings);
    tcsetattr(line_, TCSANOW, &settings);
  }
  ~Bytes() override { close(line_); }

  void Send(std::string_view bytes) {
    while (!bytes.empty()) {
      const auto sent = write(line_, bytes.data(), bytes.size());
      ASSERT_GT(sent, 0);
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
  }

  /// So many bytes, or what has come when the time is over.
  std::string Read(std::size_t count) {
    std::string bytes;
    const auto deadline = steady_clock::now() + kPatience;
    while (bytes.size() < count && steady_clock::now() < deadline) bytes += ReadWithin(kSilenceMs);
    return bytes;
  }
  /// What comes within a while of silence.
  std::string ReadWithin(int milliseconds) {
    pollfd ready = {line_, POLLIN, 0};
    if (poll(&ready, 1, milliseconds) <= 0) return {};
    char buffer[4096];
    const auto got = read(line_, buffer, sizeof buffer);
    return {buffer, static_cast<std::size_t>(got > 0 ? got : 0)};
  }
  /// Sends, and what comes back must be these bytes and no more.
  void Exchange(std::string_view sent, const std::string& expected) {
    Send(sent);
    EXPECT_EQ(Read(expected.size()), expected);
    EXPECT_EQ(ReadWithin(kSilenceMs), "");
  }

  qxtest::QxsimProcess qxsim_;
  int line_;
};

std::string Times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

const std::string kQuery = "C<GT_OMD,KEY>L\r";
const std::string kAnswer = "R<OMD,KEY=0>N\r\x06";

TEST_F(Bytes, AnUnknownWordIsAnsweredWithChecksum6AndOneAck) { Exchange("C<gt_omd>W\r", "R<ER_CMD>6\r\x06"); }

TEST_F(Bytes, AHalfFieldIsAnsweredWithChecksumQAndOneAck) { Exchange("C<GT_OMD,KEY=>I\r", "R<ER_PRM>Q\r\x06"); }

TEST_F(Bytes, AFailureIsAnsweredWithChecksum5AndOneAck) {
  qxsim_.http().Ask("POST", "/api/v1/faults", {{"library", "COREDLL"}, {"call", "CreateThread"}, {"result", 0}});
  Exchange("C<ST_FOC,AFO=1>+\r", "R<ER_FAL>5\r\x06");
}

TEST_F(Bytes, TheSameKeyTwiceIsAParameterError) { Exchange("C<GT_OMD,KEY,KEY>!\r", "R<ER_PRM>Q\r\x06"); }

TEST_F(Bytes, EnquiryInTheMiddleOfAFrameIsAnsweredWithOneAck) {
  Exchange("C<GT_OMD,\x05", std::string(1, kAck));
  Exchange("KEY>L\r", "");
  Exchange(kQuery, kAnswer);
}

TEST_F(Bytes, AWrongChecksumIsAnsweredWithNakAlone) { Exchange("C<GT_OMD,KEY>X\r", "\x15"); }

TEST_F(Bytes, ALineFeedEndsAFrame) { Exchange("C<GT_OMD,KEY>L\n", kAnswer); }

TEST_F(Bytes, AnEscapedCommaStaysInItsValue) { Exchange("C<GT_OMD,KEY=a\\,b\\\\>L\r", kAnswer); }

TEST_F(Bytes, ACommandMayComeByteByByte) {
  for (const char byte : kQuery) {
    Send({&byte, 1});
    EXPECT_EQ(ReadWithin(byte == '\r' ? 0 : 2), "");
  }
  EXPECT_EQ(Read(kAnswer.size()), kAnswer);
}

TEST_F(Bytes, AHundredCommandsMayComeInOneWrite) { Exchange(Times(100, kQuery), Times(100, kAnswer)); }

// The frame buffer holds 8232 bytes; one more empties it and is lost, and what follows is noise up to the next "C".
std::string FrameOf(std::size_t bytes) {
  std::string frame = "C<GT_OMD,KEY,X=";
  frame.append(bytes - frame.size() - 2, 'x');
  frame += '>';
  unsigned sum = 0;
  for (const char byte : frame) sum += static_cast<unsigned char>(byte);
  return frame + static_cast<char>((sum & 0x3F) + 0x20) + '\r';
}

TEST_F(Bytes, AFrameOf8231BytesIsTaken) { Exchange(FrameOf(8231), kAnswer); }

TEST_F(Bytes, AFrameOf8232BytesIsTaken) { Exchange(FrameOf(8232), kAnswer); }

TEST_F(Bytes, AFrameOf8233BytesIsLostWithoutAnAnswerAndTheNextIsGood) {
  Exchange(FrameOf(8233), "");
  Exchange(kQuery, kAnswer);
}

}  // namespace
