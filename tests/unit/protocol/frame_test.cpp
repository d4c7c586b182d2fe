// The checksum and the composition of frames.
#include "protocol/frame.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>

namespace {

std::string Frame(bool asynchronous, std::string_view text) {
  std::string frame = "left over";
  qxcm::ComposeFrame(asynchronous, text, frame);
  return frame;
}

TEST(Checksum, OfTheGenericErrorsIsAsWorkedOutByHand) {
  EXPECT_EQ(qxcm::Checksum("R<ER_CMD>"), '6');
  EXPECT_EQ(qxcm::Checksum("R<ER_PRM>"), 'Q');
  EXPECT_EQ(qxcm::Checksum("R<ER_FAL>"), '5');
}

TEST(Checksum, OfNothingIsASpace) { EXPECT_EQ(qxcm::Checksum(""), ' '); }

TEST(Checksum, CountsBytesAbove127AsUnsigned) {
  EXPECT_EQ(qxcm::Checksum("\xFF"), 0x3F + 0x20);
  EXPECT_EQ(qxcm::Checksum("\x80\x80"), 0x20);
}

TEST(Checksum, IsTheLowSixBitsOfTheSumOverAnyBytes) {
  EXPECT_TRUE(rc::check([](const std::string& bytes) {
    int sum = 0;
    for (const char byte : bytes) sum = (sum + static_cast<unsigned char>(byte)) % 256;
    const char checksum = qxcm::Checksum(bytes);
    RC_ASSERT(checksum == sum % 64 + 0x20);
    RC_ASSERT(checksum >= 0x20);
    RC_ASSERT(checksum <= 0x5F);
  }));
}

TEST(ComposeFrame, OfAReplyBeginsWithR) { EXPECT_EQ(Frame(false, "ER_CMD"), "R<ER_CMD>6\r"); }

TEST(ComposeFrame, OfAnAsynchronousMessageBeginsWithA) {
  EXPECT_EQ(Frame(true, "MDT,KEY=0A"), std::string("A<MDT,KEY=0A>") + qxcm::Checksum("A<MDT,KEY=0A>") + "\r");
}

TEST(ComposeFrame, ChecksTheTypeLetterToo) { EXPECT_NE(Frame(false, "X")[4], Frame(true, "X")[4]); }

TEST(ComposeFrame, OfAnEmptyTextIsAFrameOfFiveBytes) { EXPECT_EQ(Frame(false, "").size(), 5u); }

TEST(ComposeFrame, ReplacesWhatTheBufferHeld) { EXPECT_EQ(Frame(false, "ER_FAL"), "R<ER_FAL>5\r"); }

TEST(ComposeFrame, LeavesEveryByteOfTheTextAsItIs) {
  EXPECT_TRUE(rc::check([](bool asynchronous, const std::string& text) {
    const std::string frame = Frame(asynchronous, text);
    RC_ASSERT(frame.substr(2, text.size()) == text);
    RC_ASSERT(frame.size() == text.size() + 5);
  }));
}

}  // namespace
