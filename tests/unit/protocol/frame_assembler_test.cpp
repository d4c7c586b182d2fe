// Received bytes on their way into the command queue, and what is answered on the way.
#include "protocol/frame_assembler.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/memory_link.h"

namespace {

using qxtest::CommandFrame;
using qxtest::kAck;
using qxtest::kNak;

/// An assembler on an open link, without a dispatcher: its commands stay queued.
struct Receiver {
  Receiver() {
    link->SetOwner(&assembler);
    link->Open(u"COM5:");
  }

  std::string Popped() {
    std::string text;
    return commands.Pop(text) ? text : "(empty)";
  }

  qxtest::MemoryLine line;
  qxcm::CommandQueue commands;
  qxcm::FrameAssembler assembler{commands};
  std::unique_ptr<qxcm::Link> link = line.MakeLink();
};

TEST(FrameAssembler, QueuesGoodCommandsWithoutAnAnswer) {
  Receiver receiver;
  receiver.line.Send(CommandFrame("GT_CLK") + CommandFrame("GT_OMD"));
  EXPECT_EQ(receiver.Popped(), "GT_CLK");
  EXPECT_EQ(receiver.Popped(), "GT_OMD");
  EXPECT_EQ(receiver.line.Take(), "");
}

TEST(FrameAssembler, AnswersEnquiriesAndWrongChecksumsInTheirOrder) {
  Receiver receiver;
  receiver.line.Send(
      "\x05"
      "C<GT_CLK>!\r\x05");
  EXPECT_EQ(receiver.line.Take(), std::string(kAck) + std::string(kNak) + std::string(kAck));
  EXPECT_EQ(receiver.Popped(), "(empty)");
}

TEST(FrameAssembler, PutsAFrameTogetherFromManyReads) {
  Receiver receiver;
  for (const char byte : CommandFrame("GT_CLK")) receiver.line.Send({&byte, 1});
  EXPECT_EQ(receiver.Popped(), "GT_CLK");
}

TEST(FrameAssembler, TakesNothingOnceStopped) {
  Receiver receiver;
  receiver.assembler.Stop();
  receiver.line.Send("\x05" + CommandFrame("GT_CLK"));
  EXPECT_EQ(receiver.line.Take(), "");
  EXPECT_EQ(receiver.Popped(), "(empty)");
}

TEST(FrameAssembler, TakesBytesAgainAfterARestart) {
  Receiver receiver;
  receiver.assembler.Stop();
  receiver.assembler.Restart();
  receiver.line.Send(CommandFrame("GT_CLK"));
  EXPECT_EQ(receiver.Popped(), "GT_CLK");
}

TEST(FrameAssembler, ForgetsAHalfFrameWhenTheLinkHasBeenClosed) {
  Receiver receiver;
  receiver.line.Send("C<GT_");
  receiver.assembler.Discard();
  receiver.line.Send("CLK>0\r");
  receiver.line.Send(CommandFrame("GT_OMD"));
  EXPECT_EQ(receiver.Popped(), "GT_OMD");
}

TEST(Link, TellsNobodyWithoutAnOwner) {
  Receiver receiver;
  receiver.link->SetOwner(nullptr);
  receiver.line.Send(CommandFrame("GT_CLK"));
  EXPECT_EQ(receiver.Popped(), "(empty)");
  receiver.link->SetOwner(&receiver.assembler);
  receiver.line.Send("\x05");
  EXPECT_EQ(receiver.Popped(), "GT_CLK") << "the bytes have waited";
}

}  // namespace
