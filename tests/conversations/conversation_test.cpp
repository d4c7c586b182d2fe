// Every conversation runs twice: on a simulator in this process, and on qxsim itself over its line and its HTTP face.
#include "conversations/conversation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "qxsim/simulator.h"
#include "support/process.h"
#include "support/qxsim_process.h"

namespace {

using nlohmann::json;
using qxtest::Controller;
using qxtest::Surroundings;

class InProcess : public Surroundings {
 public:
  InProcess() : simulator_(Options(folder_ / "line")) {}
  const std::string& port() const { return simulator_.port_path(); }

  json Ask(const std::string& method, const std::string& path, const json& body) override {
    const auto response = simulator_.Handle(method, "/api/v1" + path, method == "GET" ? "" : body.dump());
    if (response.status != 200) throw std::runtime_error(method + " " + path + ": " + response.body);
    return json::parse(response.body);
  }

 private:
  static qxsim::Options Options(const std::string& link) {
    qxsim::Options options;
    options.ephemeral = true;
    options.still = true;
    options.link = link;
    options.http.reset();
    return options;
  }

  qxtest::TemporaryFolder folder_;
  qxsim::Simulator simulator_;
};

class OverTheLine : public Surroundings {
 public:
  OverTheLine() : qxsim_({"--still"}) {}
  const std::string& port() const { return qxsim_.port(); }

  json Ask(const std::string& method, const std::string& path, const json& body) override {
    return qxsim_.http().Ask(method, "/api/v1" + path, body);
  }

 private:
  qxtest::QxsimProcess qxsim_;
};

template <class Where>
void Hold(const std::string& path) {
  Where world;
  Controller controller(world.port());
  EXPECT_EQ(qxtest::RunConversation(qxtest::ReadConversation(path), controller, world), "") << path;
}

class Conversation : public testing::TestWithParam<std::string> {};

TEST_P(Conversation, HoldsInProcess) { Hold<InProcess>(GetParam()); }

TEST_P(Conversation, HoldsOverTheLine) { Hold<OverTheLine>(GetParam()); }

std::vector<std::string> Files() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(QX_TEST_DATA) + "/conversations")) {
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  }
  return files;
}

std::string Name(const testing::TestParamInfo<std::string>& info) { return std::filesystem::path(info.param).stem(); }

INSTANTIATE_TEST_SUITE_P(Files, Conversation, testing::ValuesIn(Files()), Name);

TEST(DocumentedExchanges, HoldAsTheyStandInTheCommandsPage) {
  const std::string page = std::string(QX_TEST_DATA) + "/../docs/commands.md";
  const auto conversations = qxtest::ReadDocumented(page);
  EXPECT_GE(conversations.size(), 1u);
  for (const auto& steps : conversations) {
    InProcess world;
    Controller controller(world.port());
    EXPECT_EQ(qxtest::RunConversation(steps, controller, world), "") << page;
  }
}

TEST(ConversationRunner, SaysWhatWentOtherwiseAndWhere) {
  InProcess world;
  Controller controller(world.port());
  const std::vector<qxtest::Step> steps = {{7, ">", "GT_OMD,KEY"}, {8, "<", "R OMD,KEY=1"}};
  EXPECT_EQ(qxtest::RunConversation(steps, controller, world), "line 8: expected \"R OMD,KEY=1\", got \"R OMD,KEY=0\"");
}

}  // namespace
