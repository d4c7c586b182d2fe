// The example application examples/listen.c as a controller at its line sees it.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
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

/// The program with the line it has made for its port.
class Listen : public testing::Test {
 protected:
  /// Starts it and returns the path of its line; "" when it does not come up.
  std::string Start(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {Program("listen")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    process_ = std::make_unique<Process>(arguments);
    const std::string line = NextLine();
    const std::size_t path = line.find("/dev/");
    return path == std::string::npos || NextLine().find("listening on") != 0 ? "" : line.substr(path);
  }
  std::string NextLine() { return process_->ReadLine(kPatience).value_or("nothing in time: " + process_->ErrorText()); }
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
}

TEST_F(Listen, EndsWhenItsSecondsAreOver) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_NE(Start({"--for", "1"}), "");
  EXPECT_EQ(NextLine(), "closed");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, seconds(1));
  EXPECT_EQ(process_->Wait(kPatience), 0);
}

TEST_F(Listen, ExplainsItselfWhenItIsToldWhatItDoesNotKnow) {
  const Outcome outcome = RunToEnd({Program("listen"), "--forever"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "usage: listen [--for SECONDS] [PORT]\n");
}

}  // namespace
}  // namespace qxtest
