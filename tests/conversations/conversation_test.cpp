// Every conversation runs twice: on a simulator in this process, and on qxsim itself over its line and its HTTP face.
// QX_QXSIM names another qxsim for the latter.
#include "conversations/conversation.h"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "qxsim/simulator.h"
#include "support/process.h"
#include "support/qxsim_process.h"

namespace qxtest {

// How a test's parameter is shown.
static void PrintTo(const Documented& documented, std::ostream* out) { *out << documented.title; }

}  // namespace qxtest

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
std::string Outcome(const std::vector<qxtest::Step>& steps) {
  Where world;
  Controller controller(world.port());
  return qxtest::RunConversation(steps, controller, world);
}

class Conversation : public testing::TestWithParam<std::string> {};

TEST_P(Conversation, HoldsInProcess) {
  EXPECT_EQ(Outcome<InProcess>(qxtest::ReadConversation(GetParam())), "") << GetParam();
}

TEST_P(Conversation, HoldsOverTheLine) {
  EXPECT_EQ(Outcome<OverTheLine>(qxtest::ReadConversation(GetParam())), "") << GetParam();
}

std::vector<std::string> Files() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(QX_TEST_DATA) + "/conversations")) {
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  }
  return files;
}

std::string Name(const testing::TestParamInfo<std::string>& info) { return std::filesystem::path(info.param).stem(); }

INSTANTIATE_TEST_SUITE_P(Files, Conversation, testing::ValuesIn(Files()), Name);

// The exchanges of the commands page, as they stand there.
class DocumentedExchange : public testing::TestWithParam<qxtest::Documented> {};

TEST_P(DocumentedExchange, HoldsInProcess) { EXPECT_EQ(Outcome<InProcess>(GetParam().steps), "") << GetParam().title; }

TEST_P(DocumentedExchange, HoldsOverTheLine) {
  EXPECT_EQ(Outcome<OverTheLine>(GetParam().steps), "") << GetParam().title;
}

std::string Title(const testing::TestParamInfo<qxtest::Documented>& info) {
  std::string name = std::to_string(info.index + 1);
  bool parted = true;
  for (const char letter : info.param.title) {
    const bool shown = std::isalnum(static_cast<unsigned char>(letter)) != 0;
    if (shown) name += (parted ? "_" : "") + std::string(1, letter);
    parted = !shown;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(CommandsPage, DocumentedExchange,
                         testing::ValuesIn(qxtest::ReadDocumented(std::string(QX_TEST_DATA) + "/../docs/commands.md")),
                         Title);

TEST(ConversationRunner, SaysWhatWentOtherwiseAndWhere) {
  InProcess world;
  Controller controller(world.port());
  const std::vector<qxtest::Step> steps = {{7, ">", "GT_OMD,KEY"}, {8, "<", "R OMD,KEY=1"}};
  EXPECT_EQ(qxtest::RunConversation(steps, controller, world), "line 8: expected \"R OMD,KEY=1\", got \"R OMD,KEY=0\"");
}

}  // namespace
