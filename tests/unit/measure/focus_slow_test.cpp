// Focus jobs that run into their time-out: these take seconds.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "common/kernel/handles.h"
#include "unit/measure/focusing_service.h"

namespace qxtest {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

milliseconds Since(Clock::time_point start) { return std::chrono::duration_cast<milliseconds>(Clock::now() - start); }

TEST(FocusWorker, GivesASilentFocusingSideUpInTime) {
  Focusing service;
  const auto start = Clock::now();
  service.Answer("ST_FOC,MFO=F");
  EXPECT_TRUE(WaitUntil([&] { return service.BlockEvent() != 0; }));
  EXPECT_EQ(service.Await("FOS,MFO=ER_FAL"), MessageFrame("FOS,MFO=ER_FAL"));
  EXPECT_GE(Since(start), milliseconds(5600));
  EXPECT_LE(Since(start), milliseconds(5750));
  EXPECT_EQ(service.BlockEvent(), 0u);
  EXPECT_TRUE(service.side->Complete(false)) << "the late answer";
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, EndsWithinASecondOfItsWaitWhenTheServiceIsClosedInTime) {
  const auto start = Clock::now();
  {
    Focusing service;
    service.Answer("ST_FOC,AFO=1");
    EXPECT_TRUE(WaitUntil([&] { return service.BlockEvent() != 0; }));
    service.manager.MarkClosing();
    service.manager.Shutdown();
    EXPECT_TRUE(service.manager.AwaitEnd());
    EXPECT_EQ(service.BlockEvent(), 0u);
  }
  EXPECT_GE(Since(start), milliseconds(5600));
  EXPECT_LE(Since(start), milliseconds(6650));
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

// Whichever comes first, the block is free afterwards, one outcome is told and the next job is carried out.
TEST(FocusWorker, WhoseAnswerComesInTheInstantOfTheTimeOutTellsOneOutcome) {
  Focusing service;
  service.side->SetAnswer(FocusAnswer::kSuccess);
  service.side->SetTakesMs(5650);
  service.Answer("ST_FOC,AFO=1");
  std::string told;
  EXPECT_TRUE(WaitUntil([&] { return (told += service.line.Take()).find('\r') != std::string::npos; }));
  EXPECT_TRUE(told == MessageFrame("FOS,AFO=0") || told == MessageFrame("FOS,AFO=ER_FAL")) << told;
  EXPECT_EQ(service.BlockEvent(), 0u);
  EXPECT_TRUE(WaitUntil([&] { return service.side->Read().automatic == 0; })) << "the focusing side has ended too";
  service.side->SetAnswer(FocusAnswer::kSilence);
  service.side->SetTakesMs(0);
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, ClosedWhileItRunsEndsAsSoonAsItsJobDoes) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([&] { return service.Calls({32}).size() == 1; }));
  service.manager.Shutdown();
  std::thread closing([&] { EXPECT_TRUE(service.manager.AwaitEnd()); });
  service.Complete(false);
  closing.join();
  EXPECT_EQ(service.BlockEvent(), 0u);
  EXPECT_FALSE(service.manager.focus_worker().Start({})) << "no job starts after that";
}

}  // namespace
}  // namespace qxtest
