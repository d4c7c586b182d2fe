// A running qxsim as others meet it: its exports over the API, its lines, and a key process that is another process.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "common/kernel/named_objects.h"
#include "instrument/keys.h"
#include "support/qxsim_process.h"
#include "support/test_application.h"

namespace {

using nlohmann::json;
using qxtest::Controller;
using qxtest::QxsimProcess;

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kSilence{300};

class WholeInstrument : public testing::Test {
 protected:
  json Ask(const std::string& method, const std::string& path, const json& body = json::object()) {
    return qxsim_.http().Ask(method, "/api/v1" + path, body);
  }
  json Call(const std::string& name, const json& args = json::object(), unsigned handle = 0) {
    return Ask("POST", "/service", {{"call", name}, {"args", args}, {"handle", handle}});
  }
  int Result(const std::string& name, const json& args = json::object(), unsigned handle = 0) {
    return Call(name, args, handle)["result"];
  }
  unsigned RegisteredWindow(const json& plan = json::object()) {
    const unsigned window = Ask("POST", "/windows", plan)["window"];
    EXPECT_EQ(Result("QCMRegisterNotifyWindow", {{"window", window}, {"message", 0x8001}}), 0);
    return window;
  }
  json Notices() { return Ask("GET", "/notifications?since=0")["notifications"]; }

  QxsimProcess qxsim_{{"--still"}, false};  // its home is a folder of the test's
  Controller controller_{qxsim_.port()};
};

TEST_F(WholeInstrument, EveryExportGivesItsResultCodes) {
  for (const char* name :
       {"QCMCloseComm", "QCMSuspendComm", "QCMResumeComm", "QCMRegisterNotifyWindow", "QCMUnregisterNotifyWindow",
        "QCMGetPortName", "QCMSetAngleRoundParams", "QCMGetLastMsrParams", "QCMGetLastExecutedProcessInfo",
        "QCMGetLastTurnParams", "QCMGetLastTargetSearchParams", "QCMGetLastSavedImageParams",
        "QCMGetLastTargetSearchResult", "QCMT_UpgradeToolsMode"}) {
    const json args = {{"window", 1}, {"message", 0x8000}, {"step", 1.0}};
    EXPECT_EQ(Result(name, args, 12345), -14) << name;
    const bool fetches = std::string(name).rfind("QCMGetLast", 0) == 0;
    if (fetches) {
      EXPECT_EQ(Result(name), -13) << name;
    }
  }
  EXPECT_EQ(Result("QCMGetPortName", {{"bytes", 10}}), -1);
  EXPECT_EQ(Result("QCMSetAngleRoundParams", {{"step", 60.01}}), -1);
  EXPECT_EQ(Result("QCMSetAngleRoundParams", {{"step", 60.0}}), 0);
  EXPECT_EQ(Result("QCMRegisterNotifyWindow", {{"window", 1}, {"message", 0x7FFF}}), -1);
  EXPECT_EQ(Result("QCMUnregisterNotifyWindow", {{"window", 1}}), -13);
  EXPECT_EQ(Result("QCMT_UpgradeToolsMode"), 0);
  EXPECT_EQ(Result("QCMSuspendComm"), 0);
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "CreateFileW"}, {"error", 5}, {"on", "COM5:"}});
  EXPECT_EQ(Result("QCMResumeComm"), -12);
  EXPECT_EQ(Result("QCMResumeComm"), 0);
}

TEST_F(WholeInstrument, SuspendsAndResumesUnderTraffic) {
  for (int round = 0; round < 20; ++round) {
    controller_.Send("C<GT_OMD,KEY>L\r");
    EXPECT_EQ(Result("QCMSuspendComm"), 0);
    EXPECT_EQ(Result("QCMResumeComm"), 0);
  }
  controller_.ReceiveUntilQuiet(kSilence);
  EXPECT_EQ(controller_.Exchange("GT_OMD,KEY"), "R<OMD,KEY=0>N\r\x06");
}

TEST_F(WholeInstrument, DropsADeadWindowAndTheOneBehindItStillHears) {
  const unsigned dead = RegisteredWindow();
  const unsigned live = RegisteredWindow({{"fetch", "QCMGetLastMsrParams"}});
  Ask("DELETE", "/windows/" + std::to_string(dead));
  EXPECT_EQ(controller_.Exchange("MR_DST,MOD=F,TGT=N,OFS=1000,REP=0"), "\x06");
  const json notices = Notices();
  ASSERT_EQ(notices.size(), 1u);
  EXPECT_EQ(notices[0]["window"], live);
  EXPECT_EQ(notices[0]["wparam"], 256);
  EXPECT_EQ(notices[0]["how"], "sent");
  // mode 3, target 1, single shot, one metre
  EXPECT_EQ(notices[0]["record"], "03000000010000000100000000000000000000000000F03F");
}

TEST_F(WholeInstrument, AWindowMayCloseTheServiceWhileItHandlesADistanceRequest) {
  RegisteredWindow({{"closes", true}});
  controller_.Send("C<MR_DST>F\r");
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (Ask("GET", "/state")["resources"]["services"] != 0 && std::chrono::steady_clock::now() < deadline) {
  }
  EXPECT_NE(Result("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_EQ(controller_.Exchange("GT_OMD,KEY"), "R<OMD,KEY=0>N\r\x06");
}

TEST_F(WholeInstrument, AKeyOfAnotherProcessReachesTheServicesThatWantKeysAndNoOther) {
  EXPECT_NE(Result("QCMOpenComm", {{"port", "COMBT:"}}), 0);
  Controller second(qxsim_.port() + "-2");
  EXPECT_EQ(controller_.Exchange("ST_OMD,KEY=1"), "\x06");
  host::SetObjectNamespace(qxsim_.folder() / "home/objects");
  host::instrument::KeyProcess keys;  // this process is not qxsim's
  ASSERT_TRUE(keys.Announce({0x0A}, kPatience));
  EXPECT_EQ(controller_.ReceiveFrame(), "A<MDT,KEY=0A>C\r");
  EXPECT_EQ(second.ReceiveUntilQuiet(kSilence), "");
  EXPECT_EQ(second.Exchange("ST_OMD,KEY=1"), "\x06");
  ASSERT_TRUE(keys.WaitUntilTaken(kPatience));
  ASSERT_TRUE(keys.Announce({0x0B}, kPatience));
  EXPECT_EQ(controller_.ReceiveFrame(), "A<MDT,KEY=0B>D\r");
  EXPECT_EQ(second.ReceiveFrame(), "A<MDT,KEY=0B>D\r");
}

}  // namespace
