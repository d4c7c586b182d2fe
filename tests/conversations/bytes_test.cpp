// What goes over the line of a running qxsim, byte for byte.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "support/qxsim_process.h"
#include "support/test_application.h"

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kSilence{200};

class Bytes : public testing::Test {
 protected:
  /// Sends, and what comes back must be these bytes and no more.
  void Exchange(const std::string& sent, const std::string& expected) {
    controller_.Send(sent);
    EXPECT_EQ(controller_.Receive(expected.size()), expected);
    EXPECT_EQ(controller_.ReceiveUntilQuiet(kSilence), "");
  }

  qxtest::QxsimProcess qxsim_{{"--still"}};
  qxtest::Controller controller_{qxsim_.port()};
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
  Exchange("C<GT_OMD,\x05", "\x06");
  Exchange("KEY>L\r", "");
  Exchange(kQuery, kAnswer);
}

TEST_F(Bytes, AWrongChecksumIsAnsweredWithNakAlone) { Exchange("C<GT_OMD,KEY>X\r", "\x15"); }

TEST_F(Bytes, ALineFeedEndsAFrame) { Exchange("C<GT_OMD,KEY>L\n", kAnswer); }

TEST_F(Bytes, AnEscapedCommaStaysInItsValue) { Exchange("C<GT_OMD,KEY=a\\,b\\\\>L\r", kAnswer); }

TEST_F(Bytes, ACommandMayComeByteByByte) {
  for (const char byte : kQuery) {
    EXPECT_EQ(controller_.ReceiveUntilQuiet(milliseconds(2)), "");
    controller_.Send({&byte, 1});
  }
  EXPECT_EQ(controller_.Receive(kAnswer.size()), kAnswer);
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
