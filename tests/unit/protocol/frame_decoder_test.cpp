// The byte rules of the receiving side, one by one and against the literal reference.
#include "protocol/frame_decoder.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <vector>

#include "protocol/frame.h"
#include "support/memory_link.h"
#include "unit/protocol/reference_codec.h"

namespace {

using qxcm::FrameDecoder;
using qxcm::FrameEvent;
using qxtest::CommandFrame;
using qxtest::Happenings;

void Feed(FrameDecoder& decoder, std::string_view bytes, Happenings* happenings) {
  for (;;) {
    switch (decoder.Next(bytes)) {
      case FrameEvent::kNone:
        return;
      case FrameEvent::kEnquiry:
        happenings->push_back("ack");
        break;
      case FrameEvent::kBadChecksum:
        happenings->push_back("nak");
        break;
      case FrameEvent::kCommand:
        happenings->push_back(":" + std::string(decoder.text()));
        break;
    }
  }
}

Happenings Decode(std::string_view bytes) {
  FrameDecoder decoder;
  Happenings happenings;
  Feed(decoder, bytes, &happenings);
  return happenings;
}

/// `body` with its checksum and CR; the body need not be a frame.
std::string Checked(const std::string& body) { return body + qxcm::Checksum(body) + "\r"; }

const Happenings kNothing;

TEST(FrameDecoder, CutsTheTextOutOfAFrame) { EXPECT_EQ(Decode(CommandFrame("GT_CLK")), Happenings{":GT_CLK"}); }

TEST(FrameDecoder, TakesLineFeedAsTheEndLikeCarriageReturn) {
  std::string frame = CommandFrame("GT_CLK");
  frame.back() = '\n';
  EXPECT_EQ(Decode(frame), Happenings{":GT_CLK"});
}

TEST(FrameDecoder, CutsSeveralFramesOutOfOneRead) {
  EXPECT_EQ(Decode(CommandFrame("A") + CommandFrame("B") + CommandFrame("C")), (Happenings{":A", ":B", ":C"}));
}

TEST(FrameDecoder, TakesNothingFromBothLineEndsInARow) {
  EXPECT_EQ(Decode(CommandFrame("A") + "\n\r\n" + CommandFrame("B")), (Happenings{":A", ":B"}));
}

TEST(FrameDecoder, AnswersAnEnquiryBetweenFrames) { EXPECT_EQ(Decode("\x05"), Happenings{"ack"}); }

TEST(FrameDecoder, AnswersEveryEnquiry) { EXPECT_EQ(Decode("\x05\x05\x05"), (Happenings{"ack", "ack", "ack"})); }

TEST(FrameDecoder, DiscardsThePartialFrameAtAnEnquiry) {
  EXPECT_EQ(Decode("C<GT_\x05" + CommandFrame("GT_CLK")), (Happenings{"ack", ":GT_CLK"}));
}

TEST(FrameDecoder, TakesTheRestOfAFrameBehindAnEnquiryAsNoise) {
  EXPECT_EQ(Decode("C<GT_\x05LK>0\r"), Happenings{"ack"});
}

TEST(FrameDecoder, IgnoresAckAndNakBetweenFrames) {
  EXPECT_EQ(Decode("\x06\x15" + CommandFrame("A") + "\x15\x06"), Happenings{":A"});
}

TEST(FrameDecoder, IgnoresAckAndNakInsideAFrame) {
  std::string frame = CommandFrame("GT_CLK");
  frame.insert(5, "\x06\x15").insert(1, "\x15");
  EXPECT_EQ(Decode(frame), Happenings{":GT_CLK"});
}

TEST(FrameDecoder, ReportsAWrongChecksum) { EXPECT_EQ(Decode("C<GT_CLK>!\r"), Happenings{"nak"}); }

TEST(FrameDecoder, GoesOnBehindAWrongChecksum) {
  EXPECT_EQ(Decode("C<GT_CLK>!\r" + CommandFrame("GT_CLK")), (Happenings{"nak", ":GT_CLK"}));
}

TEST(FrameDecoder, DoesNotCompareTheByteBeforeTheChecksum) {
  EXPECT_EQ(Decode(Checked("C<GT_CLK*")), Happenings{":GT_CLK"});
}

TEST(FrameDecoder, KeepsABracketInsideTheText) { EXPECT_EQ(Decode(CommandFrame("A>B<C")), Happenings{":A>B<C"}); }

TEST(FrameDecoder, EndsTheTextAtANul) {
  EXPECT_EQ(Decode(CommandFrame(std::string("GT_CLK\0,X=1", 11))), Happenings{":GT_CLK"});
}

TEST(FrameDecoder, ReportsAnEmptyTextWhenANulComesFirst) {
  EXPECT_EQ(Decode(CommandFrame(std::string("\0X", 2))), Happenings{":"});
}

TEST(FrameDecoder, DropsAFrameOfFourBytesWithoutAnAnswer) {
  EXPECT_EQ(Checked("C<>").size(), 5u);  // four and the CR
  EXPECT_EQ(Decode(Checked("C<>")), kNothing);
  EXPECT_EQ(Decode("C<>!\r"), kNothing);
}

TEST(FrameDecoder, TakesAFrameOfFiveBytes) { EXPECT_EQ(Decode(CommandFrame("X")), Happenings{":X"}); }

TEST(FrameDecoder, DropsAFrameWithoutTheOpeningBracket) {
  EXPECT_EQ(Decode(Checked("CGT_CLK>")), kNothing);
  EXPECT_EQ(Decode("CGT_CLK>!\r"), kNothing);
}

TEST(FrameDecoder, NeverAssemblesRepliesAndMessages) {
  EXPECT_EQ(Decode(Checked("A<MDT>") + Checked("R<MDT>") + Checked("c<X>")), kNothing);
}

TEST(FrameDecoder, StartsAtTheFirstCOfNoise) {
  EXPECT_EQ(Decode("noise>!" + CommandFrame("A")), Happenings{":A"});
  EXPECT_EQ(Decode("NOISE" + CommandFrame("A")), Happenings{":A"});
  EXPECT_EQ(Decode("CC" + CommandFrame("A")), kNothing) << "the first C is the frame's first byte";
}

TEST(FrameDecoder, TakesBytesAbove127) { EXPECT_EQ(Decode(CommandFrame("\x80\xFF")), Happenings{":\x80\xFF"}); }

TEST(FrameDecoder, KeepsAFrameUntilItsRestComes) {
  FrameDecoder decoder;
  Happenings happenings;
  for (const char byte : CommandFrame("GT_CLK")) Feed(decoder, {&byte, 1}, &happenings);
  EXPECT_EQ(happenings, Happenings{":GT_CLK"});
}

TEST(FrameDecoder, ForgetsThePartialFrameWhenToldTo) {
  FrameDecoder decoder;
  Happenings happenings;
  Feed(decoder, "C<GT_", &happenings);
  decoder.Discard();
  Feed(decoder, "CLK>0\r" + CommandFrame("A"), &happenings);
  EXPECT_EQ(happenings, Happenings{":A"});
}

/// A frame with a good checksum that is `size` bytes long without its CR.
std::string FrameOf(std::size_t size) { return CommandFrame(std::string(size - 4, 'x')); }

TEST(FrameDecoder, TakesAFrameOneByteShortOfTheLimit) {
  EXPECT_EQ(Decode(FrameOf(8231)), Happenings{":" + std::string(8227, 'x')});
}

TEST(FrameDecoder, TakesAFrameOfExactlyTheLimit) {
  EXPECT_EQ(Decode(FrameOf(8232)), Happenings{":" + std::string(8228, 'x')});
}

TEST(FrameDecoder, LosesAFrameBeyondTheLimitAndTheByteThatDidNotFit) {
  EXPECT_EQ(Decode(FrameOf(8233)), kNothing);
  const std::string full = "C<" + std::string(8230, 'x');
  EXPECT_EQ(Decode(full + CommandFrame("A")), kNothing) << "the C is the byte that did not fit";
  EXPECT_EQ(Decode(full + "x" + CommandFrame("B")), Happenings{":B"});
}

TEST(FrameDecoder, ValidatesAFullFrameAtItsEnd) {
  EXPECT_EQ(Decode("C<" + std::string(8230, 'x') + "\r"), Happenings{"nak"});
}

TEST(FrameDecoder, IgnoresAckAndNakInAFullFrame) {
  std::string frame = FrameOf(8232);
  frame.insert(frame.size() - 1, "\x06\x15\x06");
  EXPECT_EQ(Decode(frame), Happenings{":" + std::string(8228, 'x')});
}

TEST(FrameDecoder, SurvivesMegabytesWithoutAFrameEnd) {
  FrameDecoder decoder;
  Happenings happenings;
  const std::string chunk(32768, 'C');
  for (int i = 0; i < 512; ++i) Feed(decoder, chunk, &happenings);
  Feed(decoder, "\r" + CommandFrame("A"), &happenings);
  EXPECT_EQ(happenings.back(), ":A");
}

// ---- Random streams

/// Pieces of which streams are made: frames good and bad, control bytes, noise.
rc::Gen<std::string> Piece() {
  const auto text = rc::gen::container<std::string>(rc::gen::elementOf(std::string("AC<>,=\\x\0", 9)));
  return rc::gen::oneOf(rc::gen::map(text, [](const std::string& inside) { return CommandFrame(inside); }),
                        rc::gen::map(text, [](const std::string& inside) { return "C<" + inside + ">!\r"; }),
                        rc::gen::map(text, [](const std::string& inside) { return Checked("R<" + inside + ">"); }),
                        text, rc::gen::container<std::string>(rc::gen::elementOf(std::string("\x05\x06\x15\r\nC<"))),
                        rc::gen::arbitrary<std::string>(), rc::gen::map(rc::gen::inRange(8200, 8260), [](int size) {
                          return FrameOf(static_cast<std::size_t>(size));
                        }));
}

std::string Stream() {
  std::string stream;
  for (const std::string& piece : *rc::gen::container<std::vector<std::string>>(Piece())) stream += piece;
  return stream;
}

TEST(FrameDecoder, DoesWhatTheRulesSayByteByByte) {
  EXPECT_TRUE(rc::check([] {
    const std::string stream = Stream();
    qxtest::ReferenceDecoder reference;
    reference.Take(stream);
    RC_ASSERT(Decode(stream) == reference.happenings());
  }));
}

TEST(FrameDecoder, GivesTheSameHoweverTheBytesArrive) {
  EXPECT_TRUE(rc::check([] {
    const std::string stream = Stream();
    FrameDecoder decoder;
    Happenings happenings;
    for (std::size_t at = 0; at < stream.size();) {
      const auto size = *rc::gen::weightedOneOf<std::size_t>(
          {{3, rc::gen::inRange<std::size_t>(1, 4)}, {1, rc::gen::inRange<std::size_t>(1, 9000)}});
      Feed(decoder, std::string_view(stream).substr(at, size), &happenings);
      at += size;
    }
    RC_ASSERT(happenings == Decode(stream));
  }));
}

}  // namespace
