// POST and DELETE /windows, GET /notifications.
#include <future>
#include <nlohmann/json.hpp>
#include <thread>

#include "common/windows/windows_messages.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

class NotifyWindowTest : public SimulatorTest {
 protected:
  Json Notices(std::uint64_t since = 0) const {
    return Ask("GET", "/notifications?since=" + std::to_string(since))["notifications"];
  }
};

TEST_F(NotifyWindowTest, PostedAndSentMessagesAreToldApart) {
  const unsigned window = MakeWindow();
  host::PostMessageW(Window(window), 0x8001, 1537, -7);
  host::SendMessageW(Window(window), 0xBFFF, 256, 1);
  const Json notices = Notices();
  ASSERT_EQ(notices.size(), 2u);
  Json posted = notices[0];
  EXPECT_GT(posted["n"], 0);
  posted.erase("n");
  EXPECT_EQ(posted,
            (Json{{"window", window}, {"message", 0x8001}, {"how", "posted"}, {"wparam", 1537}, {"lparam", -7}}));
  EXPECT_EQ(notices[1]["how"], "sent");
}

TEST_F(NotifyWindowTest, OnlyMessagesOfApplicationsAreNotices) {
  const unsigned window = MakeWindow();
  for (const UINT message : {0x7FFFu, 0x8000u, 0xBFFFu, 0xC000u}) host::PostMessageW(Window(window), message, 0, 0);
  const Json notices = Notices();
  ASSERT_EQ(notices.size(), 2u);
  EXPECT_EQ(notices[0]["message"], 0x8000);
  EXPECT_EQ(notices[1]["message"], 0xBFFF);
}

TEST_F(NotifyWindowTest, WhatWasPostedBeforeTheQuestionIsInTheAnswer) {
  const unsigned first = MakeWindow();
  const unsigned second = MakeWindow();
  std::uint64_t next = 0;
  for (unsigned round = 0; round < 200; ++round) {
    host::PostMessageW(Window(second), 0x8000, 2 * round, 0);
    host::PostMessageW(Window(first), 0x8000, 2 * round + 1, 0);
    const Json answer = Ask("GET", "/notifications?since=" + std::to_string(next));
    ASSERT_EQ(answer["notifications"].size(), 2u);
    EXPECT_EQ(answer["notifications"][0]["wparam"], 2 * round);
    EXPECT_EQ(answer["notifications"][1]["wparam"], 2 * round + 1);
    next = answer["next"];
  }
}

TEST_F(NotifyWindowTest, NoNoticeOfABusyWindowIsMissed) {
  const unsigned slow = MakeWindow({{"takes_ms", 100}});
  std::uint64_t next = 0;
  for (int i = 0; i < 3; ++i) host::PostMessageW(Window(slow), 0x8000, static_cast<WPARAM>(i), 0);
  std::vector<int> seen;
  EXPECT_TRUE(Eventually([&] {
    const Json answer = Ask("GET", "/notifications?since=" + std::to_string(next));
    for (const Json& notice : answer["notifications"]) seen.push_back(notice["wparam"]);
    next = answer["next"];
    return seen.size() >= 3;
  }));
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2}));
}

TEST_F(NotifyWindowTest, SenderWaitsAsLongAsTheWindowTakes) {
  const unsigned window = MakeWindow({{"takes_ms", 120}});
  const auto start = std::chrono::steady_clock::now();
  host::SendMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(120));
}

TEST_F(NotifyWindowTest, FetchesARecordWhileItHandlesAMessage) {
  const unsigned window = MakeWindow({{"fetch", "QCMGetLastTurnParams"}});
  host::SendMessageW(Window(window), 0x8000, 0, 0);
  std::string untouched;
  for (int i = 0; i < 48; ++i) untouched += "CD";
  EXPECT_EQ(Notices()[0]["record"], untouched);
}

TEST_F(NotifyWindowTest, ClosesTheServiceOnTheFirstSentMessageOnly) {
  const unsigned window = MakeWindow({{"closes", true}});
  host::PostMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_EQ(Notices().size(), 1u);
  EXPECT_EQ(State()["resources"]["services"], 1);
  host::SendMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_EQ(State()["resources"]["services"], 0);
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  host::SendMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_EQ(State()["resources"]["services"], 1);
}

TEST_F(NotifyWindowTest, ClosesTheServiceItWasRegisteredWith) {
  const Json second = Ask("POST", "/service", {{"call", "QCMOpenComm"}, {"args", {{"port", "COMBT:"}}}})["result"];
  const unsigned window = MakeWindow({{"closes", true}});
  const Json args = {{"window", window}, {"message", 0x8000}};
  EXPECT_EQ(
      Ask("POST", "/service", {{"call", "QCMRegisterNotifyWindow"}, {"handle", second}, {"args", args}})["result"], 0);
  host::SendMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_EQ(Ask("POST", "/service", {{"call", "QCMSuspendComm"}, {"handle", second}})["result"], -14);
  EXPECT_EQ(Service("QCMSuspendComm"), 0);
}

TEST_F(NotifyWindowTest, ADestroyedWindowIsGoneButStillRegistered) {
  const unsigned window = MakeWindow();
  EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", window}, {"message", 0x8000}}), 0);
  Ask("DELETE", "/windows/" + std::to_string(window));
  EXPECT_FALSE(host::IsWindow(Window(window)));
  EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", window}, {"message", 0x8000}}), -1);
  EXPECT_EQ(Service("QCMUnregisterNotifyWindow", {{"window", window}}), 0);
}

TEST_F(NotifyWindowTest, DestroyingCutsShortWhatTheWindowIsAt) {
  const unsigned window = MakeWindow({{"takes_ms", 600000}});
  auto sending = std::async(std::launch::async, [this, window] { host::SendMessageW(Window(window), 0x8000, 0, 0); });
  EXPECT_TRUE(Eventually([this] { return Notices().size() == 1; }));
  EXPECT_EQ(Call("DELETE", "/windows/" + std::to_string(window)).status, 200);
  sending.wait();
}

TEST_F(NotifyWindowTest, TheSimulatorEndsWhileAWindowTakesItsTime) {
  const unsigned window = MakeWindow({{"takes_ms", 600000}});
  host::PostMessageW(Window(window), 0x8000, 0, 0);
  host::PostMessageW(Window(window), 0x8000, 0, 0);
  EXPECT_TRUE(Eventually([this] { return Notices().size() == 1; }));
  simulator_.reset();
}

TEST_F(NotifyWindowTest, EachWindowHasAThreadOfItsOwn) {
  const unsigned slow = MakeWindow({{"takes_ms", 600000}});
  const unsigned quick = MakeWindow();
  host::PostMessageW(Window(slow), 0x8000, 0, 0);
  host::SendMessageW(Window(quick), 0x8000, 0, 0);
  EXPECT_TRUE(Eventually([this] { return Notices().size() == 2; }));
}

TEST_F(NotifyWindowTest, TheEventWindowIsNumberOneAndTakesNoticesToo) {
  EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", 1}, {"message", 0x8000}}), 0);
  host::PostMessageW(Window(1), 0x8000, 5, 6);
  const Json notices = Notices();
  ASSERT_EQ(notices.size(), 1u);
  EXPECT_EQ(notices[0]["window"], 1);
}

TEST_F(NotifyWindowTest, WrongRequestsAreRefused) {
  EXPECT_EQ(Call("POST", "/windows", {{"takes_ms", -1}}).status, 400);
  EXPECT_EQ(Call("POST", "/windows", {{"fetch", "QCMCloseComm"}}).status, 400);
  EXPECT_EQ(Call("POST", "/windows", {{"closes", 1}}).status, 400);
  EXPECT_EQ(Call("DELETE", "/windows/77").status, 404);
  EXPECT_EQ(Call("DELETE", "/windows/4294967298").status, 404);
  EXPECT_EQ(Call("DELETE", "/windows/x").status, 400);
  EXPECT_EQ(Call("DELETE", "/windows/1").status, 409);
  EXPECT_EQ(Call("GET", "/notifications?since=x").status, 400);
}

TEST_F(NotifyWindowTest, ThereIsABoundOnWindows) {
  for (std::size_t i = 0; i < qxsim::kMostWindows; ++i) MakeWindow();
  EXPECT_EQ(Call("POST", "/windows").status, 409);
}

TEST(NotificationLogTest, KeepsTheNewestOnly) {
  qxsim::NotificationLog log(nullptr);
  const std::uint64_t count = qxsim::kMostNotifications + 10;
  for (std::uint64_t n = 1; n <= count; ++n) log.Add({n, 2, 0x8000, false, n, 0, {}});
  const auto kept = log.Tell(0, count + 1);
  EXPECT_EQ(kept.size(), qxsim::kMostNotifications);
  EXPECT_EQ(kept.front().n, 11u);
}

TEST(NotificationLogTest, ALateNoticeGetsANumberNotToldYet) {
  qxsim::NotificationLog log(nullptr);
  const std::uint64_t late = host::TakeCallNumber();
  const std::uint64_t told = host::TakeCallNumber();
  EXPECT_TRUE(log.Tell(0, told).empty());
  log.Add({late, 2, 0x8000, false, 42, 0, {}});
  const auto kept = log.Tell(told, told + 1000);
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_EQ(kept[0].wparam, 42u);
}

}  // namespace
}  // namespace qxtest
