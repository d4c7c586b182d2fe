// The road of one command through the dispatcher, on a real service over a link in memory.
#include "protocol/command_processor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "api/comm_manager.h"
#include "common/calls/calls.h"
#include "support/memory_link.h"

namespace {

using qxtest::CommandFrame;
using qxtest::kAck;
using qxtest::kNak;
using qxtest::ReplyFrame;

/// An open service and its controller.
struct Service {
  Service() { host::ClearFaults(); }

  std::string Exchange(std::string_view text) { return line.Exchange(text); }

  qxtest::MemoryLine line;
  qxcm::CommManager manager{u"COM5", line.MakeLink()};
};

const std::string kUnknown = ReplyFrame("ER_CMD") + std::string(kAck);
const std::string kBadParameter = ReplyFrame("ER_PRM") + std::string(kAck);
const std::string kDone(kAck);

TEST(CommandProcessor, AnswersAnUnknownWordAndAcknowledgesIt) {
  Service service;
  EXPECT_EQ(service.Exchange("GT_XYZ"), kUnknown);
  EXPECT_EQ(service.Exchange("X"), kUnknown);
}

TEST(CommandProcessor, TellsCasesApart) { EXPECT_EQ(Service().Exchange("gt_omd"), kUnknown); }

TEST(CommandProcessor, AnswersATextWithoutAWordLikeAnUnknownOne) {
  Service service;
  EXPECT_EQ(service.Exchange(",,,"), kUnknown);
  EXPECT_EQ(service.Exchange(std::string("\0X", 2)), kUnknown);
}

TEST(CommandProcessor, AnswersAnUnknownWordWithBadFieldsAsUnknown) {
  EXPECT_EQ(Service().Exchange("GT_XYZ,A="), kUnknown);
}

TEST(CommandProcessor, AcknowledgesASuccessWithoutAReply) { EXPECT_EQ(Service().Exchange("ST_OMD,ANG=1"), kDone); }

TEST(CommandProcessor, SendsTheHandlersReplyBeforeTheAcknowledgement) {
  EXPECT_EQ(Service().Exchange("GT_OMD,ANG"), ReplyFrame("OMD,ANG=0") + std::string(kAck));
}

TEST(CommandProcessor, AnswersBadFieldsWithoutCallingTheHandler) {
  Service service;
  EXPECT_EQ(service.Exchange("ST_OMD,ANG=1,TLT="), kBadParameter);
  EXPECT_EQ(service.Exchange("ST_OMD,ANG=1,=1"), kBadParameter);
  EXPECT_EQ(service.Exchange("ST_OMD,ANG=1,ANG=1"), kBadParameter);
  EXPECT_EQ(service.Exchange("GT_OMD,ANG"), ReplyFrame("OMD,ANG=0") + std::string(kAck));
}

TEST(CommandProcessor, AnswersAHandlersMinusOneAsAParameterError) {
  EXPECT_EQ(Service().Exchange("ST_OMD,ANG=2"), kBadParameter);
}

TEST(CommandProcessor, TakesCommandsInTheirOrderWithOneAcknowledgementEach) {
  Service service;
  service.line.Send(CommandFrame("ST_OMD,ANG=11") + CommandFrame("GT_OMD,ANG") + CommandFrame("NONE") +
                    CommandFrame("ST_OMD,ANG=3"));
  EXPECT_EQ(service.line.TakeWithAcks(4), kDone + ReplyFrame("OMD,ANG=11") + kDone + kUnknown + kBadParameter);
}

TEST(CommandProcessor, TakesAThousandQueuedCommands) {
  Service service;
  std::string commands;
  for (int i = 0; i < 1000; ++i) commands += CommandFrame("ST_OMD,ANG=1");
  service.line.Send(commands);
  EXPECT_EQ(service.line.TakeWithAcks(1000), std::string(1000, kAck.front()));
}

TEST(CommandProcessor, OffersNoToolsCommandBeforeToolsMode) { EXPECT_EQ(Service().Exchange("ST_PWR"), kUnknown); }

TEST(CommandProcessor, OffersTheMainCommandsInToolsMode) {
  Service service;
  service.manager.processor().SetToolsMode();
  EXPECT_EQ(service.Exchange("ST_OMD,ANG=1"), kDone);
}

TEST(CommandProcessor, HandlesNothingWhenNothingIsQueued) {
  Service service;
  service.manager.processor().HandleOne();
  EXPECT_EQ(service.line.Take(), "");
}

TEST(CommandProcessor, AnswersAnEnquiryBesideACommand) {
  Service service;
  service.line.Send("\x05");
  EXPECT_EQ(service.line.Take(), kAck) << "at once, on the thread that received it";
  service.line.Send("C<GT_OMD>!\r");
  EXPECT_EQ(service.line.Take(), kNak);
}

// ---- What the instrument sees

using Calls = std::vector<std::string>;

/// The calls that keep the instrument awake made while `text` is handled, with their numbers.
Calls WakeCalls(Service& service, std::string_view text) {
  host::EnableCallLog(true);
  service.Exchange(text);
  Calls calls;
  for (const host::CallRecord& record : host::CallsSince(0, nullptr)) {
    std::string call = std::get<std::string>(record.call);
    for (const host::CallValue& argument : record.args) {
      const auto* number = std::get_if<std::int64_t>(&argument);
      call += number == nullptr ? " null" : " " + std::to_string(*number);
    }
    calls.push_back(call);
  }
  host::EnableCallLog(false);
  return calls;
}

const Calls kWake = {"SetSystemPowerState null 65536 4096", "SystemIdleTimerReset"};

TEST(CommandProcessor, WakesTheInstrumentForAKnownWord) {
  Service service;
  EXPECT_EQ(WakeCalls(service, "GT_OMD"), kWake);
}

TEST(CommandProcessor, WakesTheInstrumentBeforeItLooksAtTheFields) {
  Service service;
  EXPECT_EQ(WakeCalls(service, "GT_OMD,ANG="), kWake);
}

TEST(CommandProcessor, LeavesTheInstrumentAsleepForAnUnknownWord) {
  Service service;
  EXPECT_EQ(WakeCalls(service, "GT_XYZ"), Calls());
  EXPECT_EQ(WakeCalls(service, ",,"), Calls());
  EXPECT_EQ(WakeCalls(service, "ST_PWR"), Calls());
}

TEST(CommandProcessor, GoesOnWhenTheInstrumentCannotBeWoken) {
  Service service;
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = "SetSystemPowerState";
  fault.result = 87;
  host::AddFault(fault);
  EXPECT_EQ(service.Exchange("ST_OMD,ANG=1"), kDone);
}

}  // namespace
