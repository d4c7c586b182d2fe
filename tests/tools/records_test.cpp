// /calls and /faults.
#include <nlohmann/json.hpp>

#include "support/controller.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

class CallLogTest : public SimulatorTest {
 protected:
  std::uint64_t Now() const { return Ask("GET", "/calls")["next"]; }
  Json Calls(std::uint64_t since) const { return Ask("GET", "/calls?since=" + std::to_string(since))["calls"]; }
  void Reopen() const {
    EXPECT_EQ(Service("QCMCloseComm"), 0);
    EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  }
  std::int64_t OpenAgain() const {
    Service("QCMCloseComm");
    return Service("QCMOpenComm", {{"port", "COM5:"}});
  }
};

Json Named(const Json& calls, const Json& name) {
  Json found = Json::array();
  for (const Json& call : calls) {
    if (call["call"] == name) found.push_back(call);
  }
  return found;
}

TEST_F(CallLogTest, OpeningAPortIsListedInOrder) {
  const std::uint64_t since = Now();
  Reopen();
  const Json calls = Calls(since);
  const Json file = Named(calls, "CreateFileW");
  ASSERT_EQ(file.size(), 1u);
  EXPECT_EQ(file[0]["library"], "COREDLL");
  EXPECT_EQ(file[0]["args"], (Json{"COM5:", 0xC0000000, 0, nullptr, 3, 0, nullptr}));
  EXPECT_EQ(Named(calls, "SetupComm")[0]["args"], (Json{file[0]["result"], 1024, 1024}));
  EXPECT_LT(file[0]["n"], Named(calls, "SetCommState")[0]["n"]);
  EXPECT_LT(Named(calls, "SetCommState")[0]["n"], Named(calls, "SetCommTimeouts")[0]["n"]);
}

TEST_F(CallLogTest, SystemLibraryCallsAreNamedByOrdinal) {
  const std::uint64_t since = Now();
  Reopen();
  const Json calls = Named(Calls(since), 63);
  ASSERT_EQ(calls.size(), 1u);
  EXPECT_EQ(calls[0]["library"], "QxSystem");
  EXPECT_EQ(calls[0]["args"], Json::array());
  EXPECT_EQ(calls[0]["result"], 0);
  EXPECT_TRUE(calls[0]["at"].is_number());
}

TEST_F(CallLogTest, NextAsksForWhatFollows) {
  const Json first = Ask("GET", "/calls");
  EXPECT_FALSE(first["calls"].empty());
  const std::uint64_t next = first["next"];
  EXPECT_NE(OpenAgain(), 0);
  const Json later = Calls(next);
  EXPECT_FALSE(later.empty());
  for (const Json& call : later) EXPECT_GE(call["n"], next);
  EXPECT_EQ(Call("GET", "/calls?since=-1").status, 400);
}

TEST_F(CallLogTest, AFaultMakesTheNthCallFailAndIsListed) {
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "SetCommState"}, {"nth", 2}, {"result", 0}, {"error", 5}});
  EXPECT_NE(OpenAgain(), 0);
  const std::uint64_t since = Now();
  EXPECT_EQ(OpenAgain(), 0);
  EXPECT_EQ(Named(Calls(since), "SetCommState")[0]["result"], 0);
  EXPECT_NE(OpenAgain(), 0);
}

TEST_F(CallLogTest, AFaultHoldsAsManyTimesAsAsked) {
  Ask("POST", "/faults", {{"library", "QxSystem"}, {"call", 63}, {"times", 2}, {"result", -1}});
  EXPECT_EQ(OpenAgain(), 0);
  EXPECT_EQ(OpenAgain(), 0);
  EXPECT_NE(OpenAgain(), 0);
}

TEST_F(CallLogTest, AFaultCanBeLimitedToOneDevice) {
  Ask("POST", "/faults",
      {{"library", "COREDLL"}, {"call", "CreateFileW"}, {"times", 1000}, {"error", 5}, {"on", "COMBT:"}});
  EXPECT_NE(OpenAgain(), 0);
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COMBT:"}}), 0);
}

TEST_F(CallLogTest, FaultsReachCallsThatAreNotListed) {
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "CreateThread"}, {"times", 1000}});
  const std::uint64_t since = Now();
  EXPECT_EQ(OpenAgain(), 0);
  EXPECT_FALSE(Named(Calls(since), "CreateThread").empty());
  Ask("DELETE", "/faults");
  EXPECT_NE(OpenAgain(), 0);
}

TEST_F(CallLogTest, ADelayedCallIsMadeLater) {
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "SetupComm"}, {"delay_ms", 150}});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_NE(OpenAgain(), 0);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
}

TEST_F(CallLogTest, WrongFaultsAreRefused) {
  const Json wrong[] = {Json::object(),
                        {{"library", "COREDLL"}},
                        {{"call", "SetupComm"}},
                        {{"library", ""}, {"call", "SetupComm"}},
                        {{"library", "COREDLL"}, {"call", nullptr}},
                        {{"library", "COREDLL"}, {"call", 1.5}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"nth", 0}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"times", 0}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"result", "0"}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"error", -1}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"on", 7}},
                        {{"library", "COREDLL"}, {"call", "SetupComm"}, {"delay_ms", -1}}};
  for (const Json& body : wrong) EXPECT_EQ(Call("POST", "/faults", body).status, 400) << body;
  EXPECT_NE(OpenAgain(), 0);
}

}  // namespace
}  // namespace qxtest
