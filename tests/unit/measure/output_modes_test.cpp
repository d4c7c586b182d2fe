// ST_OMD, GT_OMD and the key report, on a real service over a link in memory.
#include "commands/measure/output_modes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "api/comm_manager.h"
#include "common/calls/calls.h"
#include "support/memory_link.h"

namespace {

using qxtest::MessageFrame;
using qxtest::ReplyFrame;

struct Service {
  Service() { host::ClearFaults(); }

  /// "ok", or the text of the only reply before the ACK.
  std::string Answer(std::string_view command) {
    const std::string answer = line.Exchange(command);
    if (answer == qxtest::kAck) return "ok";
    const std::string text = answer.substr(2, answer.size() - 6);
    EXPECT_EQ(answer, ReplyFrame(text) + std::string(qxtest::kAck));
    return text;
  }
  std::string Modes() { return Answer("GT_OMD,ANG,TLT,DST,KEY"); }

  qxtest::MemoryLine line;
  qxcm::CommManager manager{u"COM5", line.MakeLink()};
};

void ExpectOnly(const std::string& key, const std::vector<int>& accepted) {
  Service service;
  for (int value = -3; value <= 25; ++value) {
    const bool good = std::find(accepted.begin(), accepted.end(), value) != accepted.end();
    EXPECT_EQ(service.Answer("ST_OMD," + key + "=" + std::to_string(value)), good ? "ok" : "ER_PRM") << value;
  }
}

TEST(GT_OMD, AnswersZerosWhenAServiceHasBeenOpened) { EXPECT_EQ(Service().Modes(), "OMD,ANG=0,TLT=0,DST=0,KEY=0"); }

TEST(GT_OMD, AnswersTheWordAloneWhenNothingIsAskedFor) {
  EXPECT_EQ(Service().Answer("GT_OMD"), "OMD");
  EXPECT_EQ(Service().Answer("GT_OMD,XYZ=1"), "OMD");
}

TEST(GT_OMD, AnswersInItsOwnOrder) {
  EXPECT_EQ(Service().Answer("GT_OMD,KEY,ANG"), "OMD,ANG=0,KEY=0");
  EXPECT_EQ(Service().Answer("GT_OMD,DST,TLT"), "OMD,TLT=0,DST=0");
}

TEST(GT_OMD, LooksAtThePresenceOfAKeyOnly) { EXPECT_EQ(Service().Answer("GT_OMD,ANG=21"), "OMD,ANG=0"); }

TEST(GT_OMD, DoesNotKnowKeysInAnotherCase) { EXPECT_EQ(Service().Answer("GT_OMD,ang"), "OMD"); }

TEST(ST_OMD, SetsEachModeAndLeavesTheOthers) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD,ANG=21"), "ok");
  EXPECT_EQ(service.Modes(), "OMD,ANG=21,TLT=0,DST=0,KEY=0");
  EXPECT_EQ(service.Answer("ST_OMD,KEY=1,TLT=1,DST=12"), "ok");
  EXPECT_EQ(service.Modes(), "OMD,ANG=21,TLT=1,DST=12,KEY=1");
}

TEST(ST_OMD, AcceptsTheAngleModesOnly) { ExpectOnly("ANG", {0, 1, 11, 21}); }
TEST(ST_OMD, AcceptsTheTiltModesOnly) { ExpectOnly("TLT", {0, 1}); }
TEST(ST_OMD, AcceptsTheDistanceModesOnly) { ExpectOnly("DST", {0, 1, 2, 11, 12}); }
TEST(ST_OMD, AcceptsTheKeyModesOnly) { ExpectOnly("KEY", {0, 1}); }

TEST(ST_OMD, StopsAtTheFirstBadValueAndKeepsTheModesBeforeIt) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD,ANG=1,TLT=2,DST=1,KEY=1"), "ER_PRM");
  EXPECT_EQ(service.Modes(), "OMD,ANG=1,TLT=0,DST=0,KEY=0");
  EXPECT_EQ(service.Answer("ST_OMD,ANG=11,DST=3,KEY=1"), "ER_PRM");
  EXPECT_EQ(service.Modes(), "OMD,ANG=11,TLT=0,DST=0,KEY=0");
}

TEST(ST_OMD, GoesThroughItsOwnOrderWhateverTheRequests) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD,KEY=5,ANG=1"), "ER_PRM");
  EXPECT_EQ(service.Modes(), "OMD,ANG=1,TLT=0,DST=0,KEY=0");
}

TEST(ST_OMD, KeepsTheOldModeWhenTheNewOneIsBad) {
  Service service;
  service.Answer("ST_OMD,ANG=11");
  EXPECT_EQ(service.Answer("ST_OMD,ANG=2"), "ER_PRM");
  EXPECT_EQ(service.Modes(), "OMD,ANG=11,TLT=0,DST=0,KEY=0");
}

TEST(ST_OMD, ReadsATextWithoutDigitsAsZero) {
  Service service;
  service.Answer("ST_OMD,TLT=1,KEY=1");
  EXPECT_EQ(service.Answer("ST_OMD,TLT=x,KEY"), "ok");
  EXPECT_EQ(service.Modes(), "OMD,ANG=0,TLT=0,DST=0,KEY=0");
}

TEST(ST_OMD, ReadsLeadingDigits) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD,ANG=011x,TLT= 1,DST=+2,KEY=1.9"), "ok");
  EXPECT_EQ(service.Modes(), "OMD,ANG=11,TLT=1,DST=2,KEY=1");
}

TEST(ST_OMD, RefusesNumbersTooLargeFor32Bits) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD,ANG=4294967297"), "ER_PRM");
  EXPECT_EQ(service.Answer("ST_OMD,ANG=99999999999999999999"), "ER_PRM");
}

TEST(ST_OMD, DoesNothingWithoutItsKeys) {
  Service service;
  EXPECT_EQ(service.Answer("ST_OMD"), "ok");
  EXPECT_EQ(service.Answer("ST_OMD,XYZ=9"), "ok");
  EXPECT_EQ(service.Modes(), "OMD,ANG=0,TLT=0,DST=0,KEY=0");
}

// ---- The key report

TEST(KeyReport, SendsTheCodeWhenTheControllerHasAskedForKeys) {
  Service service;
  service.Answer("ST_OMD,KEY=1");
  service.manager.HandleKey(0x0A);
  EXPECT_EQ(service.line.Take(), MessageFrame("MDT,KEY=0A"));
}

TEST(KeyReport, SendsNothingOtherwise) {
  Service service;
  service.Answer("ST_OMD,ANG=1,TLT=1,DST=1");
  service.manager.HandleKey(0x0A);
  EXPECT_EQ(service.line.Take(), "");
}

TEST(KeyReport, WritesAsManyDigitsAsTheCodeNeedsAndTwoAtLeast) {
  Service service;
  service.Answer("ST_OMD,KEY=1");
  for (const std::uint32_t code : {0u, 0xFFu, 0x100u, 0xFFFFFFFFu}) service.manager.HandleKey(code);
  EXPECT_EQ(service.line.Take(), MessageFrame("MDT,KEY=00") + MessageFrame("MDT,KEY=FF") + MessageFrame("MDT,KEY=100") +
                                     MessageFrame("MDT,KEY=FFFFFFFF"));
}

TEST(KeyReport, SendsNothingWhileSuspended) {
  Service service;
  service.Answer("ST_OMD,KEY=1");
  service.manager.Suspend();
  service.manager.HandleKey(1);
  service.manager.Resume();
  EXPECT_EQ(service.line.Take(), "");
  service.manager.HandleKey(2);
  EXPECT_EQ(service.line.Take(), MessageFrame("MDT,KEY=02"));
}

TEST(KeyReport, SendsNothingWhenTheServiceIsClosing) {
  Service service;
  service.Answer("ST_OMD,KEY=1");
  service.manager.MarkClosing();
  service.manager.HandleKey(1);
  EXPECT_EQ(service.line.Take(), "");
}

}  // namespace
