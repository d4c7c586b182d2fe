#include "tools/simulator_test.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/controller.h"

namespace qxtest {

bool Eventually(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

namespace {

using wire::Answer;
using wire::Controller;

TEST_F(SimulatorTest, AnswersAControllerOnTheFirstLine) {
  Controller controller(simulator_->port_path());
  const Answer answer = controller.Command("GT_OMD,KEY");
  EXPECT_TRUE(answer.acknowledged);
  EXPECT_EQ(answer.replies, std::vector<std::string>{"OMD,KEY=0"});
}

TEST_F(SimulatorTest, SecondServiceUsesTheLineBesideTheFirst) {
  ASSERT_NE(Service("QCMOpenComm", {{"port", "COMBT:"}}), 0);
  Controller second(simulator_->port_path() + "-2");
  EXPECT_TRUE(second.Command("GT_OMD").acknowledged);
  Controller first(simulator_->port_path());
  EXPECT_TRUE(first.Command("GT_OMD").acknowledged);
}

TEST_F(SimulatorTest, OpensTheServiceOnTheOtherPortWhenAskedTo) {
  simulator_.reset();
  options_.port = "COMBT:";
  Start();
  EXPECT_EQ(Ask("POST", "/service", {{"call", "QCMGetPortName"}})["text"], "COMBT:");
  EXPECT_TRUE(Controller(simulator_->port_path()).Command("GT_OMD").acknowledged);
}

TEST_F(SimulatorTest, LeavesNeitherLinksNorHomeBehind) {
  const auto home = simulator_->home().path();
  EXPECT_TRUE(std::filesystem::is_directory(home / "files"));
  EXPECT_TRUE(std::filesystem::is_symlink(simulator_->port_path() + "-2"));
  simulator_.reset();
  EXPECT_FALSE(std::filesystem::exists(home));
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(SimulatorTest, CanBeStartedManyTimesInOneProcess) {
  for (int round = 0; round < 20; ++round) {
    simulator_.reset();
    Start();
    ASSERT_TRUE(Controller(simulator_->port_path()).Command("GT_OMD").acknowledged);
  }
  EXPECT_EQ(State()["resources"]["services"], 1);
}

TEST_F(SimulatorTest, RefusesExportsOnceItEnds) {
  simulator_->Close();
  EXPECT_EQ(Call("POST", "/service", {{"call", "QCMSuspendComm"}}).status, 503);
  EXPECT_EQ(State()["resources"]["services"], 0);
}

TEST_F(SimulatorTest, UnknownPathsAre404AndOtherMethods405) {
  EXPECT_EQ(Call("GET", "/nothing").status, 404);
  EXPECT_EQ(Call("POST", "/state/more").status, 404);
  EXPECT_EQ(Call("DELETE", "/state").status, 405);
  EXPECT_EQ(simulator_->Handle("GET", "/api/v2/state").status, 404);
  EXPECT_TRUE(Json::parse(Call("GET", "/nothing").body)["error"].is_string());
}

TEST_F(SimulatorTest, BadJsonIsRefusedEverywhere) {
  for (const char* path : {"/service", "/windows", "/mutexes", "/events", "/keys", "/faults"}) {
    for (const char* body : {"{", "[]", "7", "{\"strange\": 1}", "\xFF"}) {
      EXPECT_EQ(simulator_->Handle("POST", std::string("/api/v1") + path, body).status, 400) << path << " " << body;
    }
  }
  EXPECT_EQ(simulator_->Handle("PATCH", "/api/v1/state", "nonsense").status, 400);
}

TEST_F(SimulatorTest, JsonNestedTooDeeplyIsRefused) {
  std::string body;
  for (int depth = 0; depth < 100000; ++depth) body += "{\"a\":";
  EXPECT_EQ(simulator_->Handle("PATCH", "/api/v1/state", body).status, 400);
}

TEST_F(SimulatorTest, PanelIsOnePageThatNeedsNothingElse) {
  const qxsim::Response page = simulator_->Handle("GET", "/");
  EXPECT_EQ(page.status, 200);
  EXPECT_EQ(page.type, "text/html; charset=utf-8");
  EXPECT_NE(page.body.find("</html>"), std::string::npos);
  for (const char* foreign : {"http:", "https:", "src=", "@import", "url("}) {
    EXPECT_EQ(page.body.find(foreign), std::string::npos) << foreign;
  }
}

}  // namespace
}  // namespace qxtest
