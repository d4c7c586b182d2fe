// The example application examples/listen.c as a controller at its line sees it. The variable QX_LISTEN may name
// another program than this build's, with the same command line: tools/wine/listen.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "support/controller.h"
#include "support/process.h"

namespace qxtest {
namespace {

using std::chrono::seconds;
using wire::Controller;

constexpr seconds kPatience{20};

std::string ListenProgram() {
  const char* program = std::getenv("QX_LISTEN");
  return program == nullptr || *program == '\0' ? Program("listen") : program;
}

/// Lines end in CR and LF on Windows.
std::string WithoutCr(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

/// The program with the line that has been made for its port.
class Listen : public testing::Test {
 protected:
  /// Starts it and returns the path of its line; "" when it does not come up.
  std::string Start(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {ListenProgram()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    // Named objects of its own, whatever instrument this process has had.
    process_ = std::make_unique<Process>(arguments, "", std::vector<std::string>{"QX_OBJECTS="});
    std::string path;
    for (std::string line = NextLine(); line.find("listening on") != 0; line = NextLine()) {
      const std::size_t place = line.find(" is at ");
      if (place == std::string::npos) return "";
      if (path.empty()) path = line.substr(place + 7);
    }
    return path;
  }
  std::string NextLine() {
    return WithoutCr(process_->ReadLine(kPatience).value_or("nothing in time: " + process_->ErrorText()));
  }
  int Stop() {
    process_->Signal(SIGINT);
    return process_->Wait(kPatience).value_or(-1);
  }

  std::unique_ptr<Process> process_;
};

TEST_F(Listen, PrintsANoticeWithItsCodeItsDetailAndItsName) {
  Controller controller(Start({}));
  EXPECT_TRUE(controller.Command("ST_HAN,HAN=12.30000").acknowledged);
  EXPECT_EQ(NextLine(), "notice 513 0 QCM_NOTIFY_HORIZONTAL_ANGLE_SET");
  EXPECT_EQ(Stop(), 0);
  EXPECT_EQ(NextLine(), "closed");
}

TEST_F(Listen, HasPrintedADistanceRequestWhenTheControllerGetsItsAnswer) {
  Controller controller(Start({"COM5:"}));
  EXPECT_TRUE(controller.Command("MR_DST,MOD=F,REP=1").acknowledged);
  EXPECT_EQ(NextLine(), "notice 256 0 QCM_NOTIFY_DISTANCE_REQUEST");
  EXPECT_EQ(NextLine(), "  mode 3, target 0, repeated, offset 0.0000 m");
  EXPECT_EQ(Stop(), 0);
}

TEST_F(Listen, EndsWhenItsSecondsAreOver) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_NE(Start({"--for", "1"}), "");
  EXPECT_EQ(NextLine(), "closed");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, seconds(1));
  EXPECT_EQ(process_->Wait(kPatience), 0);
}

TEST_F(Listen, ExplainsItselfWhenItIsToldWhatItDoesNotKnow) {
  const Outcome outcome = RunToEnd({ListenProgram(), "--forever"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(WithoutCr(outcome.errors), "usage: listen [--for SECONDS] [PORT]\n");
}

}  // namespace
}  // namespace qxtest
