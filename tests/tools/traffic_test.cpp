#include "qxsim/traffic.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "qxsim/line_text.h"
#include "support/controller.h"

namespace qxtest {
namespace {

using wire::Checksum;
using wire::CommandFrame;

using qxsim::TrafficDecoder;
using qxsim::TrafficEvent;
using qxsim::TrafficItem;
using qxsim::TrafficLog;

std::string Frame(char letter, const std::string& text) {
  const std::string body = std::string(1, letter) + "<" + text + ">";
  return body + Checksum(body) + "\r";
}

/// "command GT_OMD; ack; noise xy"
std::string Text(const std::vector<TrafficItem>& items) {
  std::string text;
  for (const TrafficItem& item : items) {
    text += (text.empty() ? "" : "; ") + std::string(KindName(item.kind)) + (item.text.empty() ? "" : " " + item.text);
  }
  return text;
}

TEST(TrafficDecoderTest, ShowsACommandsText) {
  TrafficDecoder in(true);
  EXPECT_EQ(Text(in.Feed(CommandFrame("GT_OMD,KEY"))), "command GT_OMD,KEY");
}

TEST(TrafficDecoderTest, TellsRepliesFromMessagesGoingOut) {
  TrafficDecoder out(false);
  EXPECT_EQ(Text(out.Feed(Frame('R', "OMD,KEY=0") + "\x06" + Frame('A', "MDT,KEY=0A"))),
            "reply OMD,KEY=0; ack; message MDT,KEY=0A");
}

TEST(TrafficDecoderTest, TakesAFrameByteByByteAndEndedByALineFeed) {
  TrafficDecoder in(true);
  std::string frame = CommandFrame("ST_OMD,KEY=1");
  frame.back() = '\n';
  std::string seen;
  for (const char byte : frame) seen += Text(in.Feed({&byte, 1}));
  EXPECT_EQ(seen, "command ST_OMD,KEY=1");
}

TEST(TrafficDecoderTest, ShowsAFrameWithAWrongChecksumAsNoise) {
  TrafficDecoder in(true);
  EXPECT_EQ(Text(in.Feed("C<GT_OMD>!\r")), "noise C<GT_OMD>!");
}

TEST(TrafficDecoderTest, EnqCutsAFrameShort) {
  TrafficDecoder in(true);
  EXPECT_EQ(Text(in.Feed("C<GT\x05" + CommandFrame("GT_OMD"))), "noise C<GT; enq; command GT_OMD");
}

TEST(TrafficDecoderTest, AckAndNakWithinAFrameArePassedOver) {
  TrafficDecoder in(true);
  std::string frame = CommandFrame("GT_OMD");
  frame.insert(3, "\x06\x15");
  EXPECT_EQ(Text(in.Feed(frame)), "ack; nak; command GT_OMD");
}

TEST(TrafficDecoderTest, DoesNotHoldBackNoiseBetweenFrames) {
  TrafficDecoder in(true);
  EXPECT_EQ(Text(in.Feed("xyz")), "noise xyz");
  EXPECT_EQ(Text(in.Feed("R" + CommandFrame("X"))), "noise R; command X");
  EXPECT_EQ(Text(in.Feed("\r\n\r")), "");
}

TEST(TrafficDecoderTest, ShortestFrameHasOneCharacter) {
  TrafficDecoder in(true);
  const std::string empty = std::string("C<>") + Checksum("C<>") + "\r";
  EXPECT_EQ(Text(in.Feed(CommandFrame("X") + empty)), "command X; noise " + empty.substr(0, 4));
}

TEST(TrafficDecoderTest, GivesUpAFrameLongerThanAnyAndStartsAfresh) {
  TrafficDecoder in(true);
  EXPECT_TRUE(in.Feed("C" + std::string(8231, 'x')).empty());
  const auto items = in.Feed("y" + CommandFrame("GT_OMD"));
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0].text.size(), 8233u);
  EXPECT_EQ(items[1].text, "GT_OMD");
}

TEST(TrafficLogTest, NumbersWhatItTellsAndKeepsDirectionsApart) {
  TrafficLog log;
  std::vector<TrafficEvent> seen;
  log.Subscribe([&seen](const TrafficEvent& event) { seen.push_back(event); });
  const std::string command = CommandFrame("GT_OMD");
  log.Feed("COM5:", true, command.substr(0, 4));
  log.Feed("COM5:", false, "\x06");
  log.Feed("COM5:", true, command.substr(4));
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(qxsim::ToJsonText(seen[1]).find("{\"n\":2,"), 0u);
  EXPECT_EQ(seen[1].text, "GT_OMD");
  const auto json = nlohmann::json::parse(qxsim::ToJsonText(seen[0]));
  EXPECT_EQ(json["way"], "out");
  EXPECT_EQ(json["kind"], "ack");
}

TEST(TrafficLogTest, TellsNoMoreAfterUnsubscribing) {
  TrafficLog log;
  int seen = 0;
  const auto number = log.Subscribe([&seen](const TrafficEvent&) { ++seen; });
  log.Feed("COM5:", false, "\x06");
  log.Unsubscribe(number);
  log.Feed("COM5:", false, "\x06");
  EXPECT_EQ(seen, 1);
}

TEST(LineTextTest, ShowsControlBytesAsEscapesAndLettersOfTheCodePage) {
  EXPECT_EQ(qxsim::ReadableText(std::string("a\0\x1B\x7F\xE4", 5)), "a\\x00\\x1B\\x7F\xC3\xA4");
  EXPECT_EQ(qxsim::HexOf(std::string("\0\xAB", 2)), "00AB");
}

}  // namespace
}  // namespace qxtest
