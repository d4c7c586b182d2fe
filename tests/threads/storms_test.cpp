// Everything at once, from many threads; and floods that the library must neither grow with nor choke on.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "api/diagnostics.h"
#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "instrument/keys.h"
#include "support/memory_link.h"
#include "support/test_application.h"
#include "threads/open_service.h"

namespace {

using qxtest::CommandFrame;
using qxtest::Controller;
using qxtest::kNotice;
using qxtest::kPatience;
using qxtest::NoticeOnEveryCommand;
using qxtest::OpenService;
using qxtest::TestWindow;
using qxtest::Watchdog;
using qxtest::World;
using std::chrono::milliseconds;

constexpr milliseconds kStorm{700};

/// Threads that repeat their work until the storm is over.
class Storm {
 public:
  void Add(std::function<void()> work) {
    threads_.emplace_back([this, work = std::move(work)] {
      while (!over_) work();
    });
  }
  void Blow() {
    std::this_thread::sleep_for(kStorm);
    over_ = true;
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  std::atomic<bool> over_{false};
  std::vector<std::thread> threads_;
};

/// A handle that all threads of a storm share, as an application does.
using SharedHandle = std::atomic<QCM_HANDLE>;

void UseExports(SharedHandle& handle, TestWindow& window) {
  QCM_WCHAR name[16];
  QCM_MSR_PARAMS record;
  QCMGetPortName(handle, name, sizeof name);
  QCMRegisterNotifyWindow(handle, window.handle(), kNotice);
  QCMGetLastMsrParams(handle, &record);
  QCMT_UpgradeToolsMode(handle);
  QCMUnregisterNotifyWindow(handle, window.handle());
}

TEST(Storm, OfOpensClosesKeysEventsAndExportsEnds) {
  Watchdog watchdog;
  World world;
  Controller bluetooth(host::AttachPty("COMBT:"));
  TestWindow window;
  SharedHandle cable{0};
  SharedHandle radio{0};
  host::instrument::KeyProcess keys;
  Storm storm;
  storm.Add([&] {
    cable = QCMOpenComm(u"COM5:");
    world.controller().TrySend(CommandFrame("ST_OMD,KEY=1"));
    QCMCloseComm(cable);
  });
  storm.Add([&] {
    radio = QCMOpenComm(u"COMBT:");
    bluetooth.TrySend(CommandFrame("ST_OMD,KEY=1"));
    QCMCloseComm(radio);
  });
  storm.Add([&] { UseExports(cable, window); });
  storm.Add([&] {
    QCMSuspendComm(radio);
    QCMResumeComm(radio);
  });
  storm.Add([&] { keys.Announce({1}, kPatience); });
  storm.Add([] { host::instrument::DeliverEvents(1); });
  storm.Blow();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(Storm, OfSuspendsAndCommandsOnOneServiceLosesNoAnswerAfterwards) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  host::instrument::KeyProcess keys;
  Storm storm;
  storm.Add([&] {
    world.controller().TrySend("\x05" + CommandFrame("GT_OMD,ANG") + CommandFrame("ST_OMD,KEY=1"));
    world.controller().ReceiveUntilQuiet(milliseconds(0));
  });
  storm.Add([&] { QCMSuspendComm(service.handle()); });
  storm.Add([&] { QCMResumeComm(service.handle()); });
  storm.Add([&] { keys.Announce({1}, kPatience); });
  storm.Add([] { host::instrument::DeliverEvents(1); });
  storm.Blow();
  EXPECT_EQ(QCMResumeComm(service.handle()), QCM_OK);
  // What the storm has left is handled first: a full command queue would lose what comes next.
  EXPECT_TRUE(qxtest::WaitUntil([&] {
    world.controller().ReceiveUntilQuiet(milliseconds(10));
    return qxcm::QueuedCommands() == 0;
  }));
  world.controller().Send("\r" + CommandFrame("ST_OMD,KEY=0"));
  world.controller().ReceiveUntilQuiet(milliseconds(300));
  EXPECT_EQ(world.controller().Exchange("GT_OMD,KEY"), qxtest::ReplyFrame("OMD,KEY=0") + std::string(qxtest::kAck));
}

TEST(Storm, OfNoticesAndRegistrationsFromWindowThreadsEnds) {
  Watchdog watchdog;
  World world;
  NoticeOnEveryCommand notices;
  const OpenService service;
  notices.To(service);
  TestWindow one;
  TestWindow two;
  Storm storm;
  storm.Add([&] {
    world.controller().Send(CommandFrame("ST_OMD"));
    EXPECT_EQ(world.controller().ReceiveAcks(1), "\x06");
  });
  for (TestWindow* window : {&one, &two}) {
    storm.Add([&service, window] {
      window->Run([&] {
        QCMRegisterNotifyWindow(service.handle(), window->handle(), kNotice);
        QCMUnregisterNotifyWindow(service.handle(), window->handle());
        QCMRegisterNotifyWindow(service.handle(), window->handle(), kNotice);
        service.manager()->PostNotification(1025, 0);
      });
    });
  }
  storm.Blow();
}

TEST(Storm, OfOpensAndClosesFromWindowThreadsUnderSentMessagesEnds) {
  Watchdog watchdog;
  World world;
  TestWindow one;
  TestWindow two;
  Storm storm;
  for (TestWindow* window : {&one, &two}) {
    storm.Add([window] { window->Run([] { QCMCloseComm(QCMOpenComm(u"COM5:")); }); });
    storm.Add([window] { host::SendMessageW(window->handle(), kNotice, 0, 0); });
  }
  storm.Add([] { host::instrument::DeliverEvents(1); });
  storm.Blow();
}

// ---- Floods

/// Resident memory of this process, bytes.
std::size_t ResidentBytes() {
  std::FILE* file = std::fopen("/proc/self/statm", "r");
  unsigned long size = 0;
  unsigned long resident = 0;
  EXPECT_EQ(std::fscanf(file, "%lu %lu", &size, &resident), 2);
  std::fclose(file);
  return resident * 4096;
}

TEST(Flood, OfCommandsThatNobodyTakesUpIsBoundedAndTheServiceAnswersAgain) {
  Watchdog watchdog;
  qxtest::MemoryLine line;
  qxcm::CommManager service(u"COM5:", line.MakeLink());
  const std::string command = CommandFrame("GT_OMD,ANG");
  {
    qxcm::Guard hold(service.lock());  // the dispatcher waits for it with the first command
    for (int i = 0; i < 100000; ++i) line.Send(command);
    EXPECT_EQ(service.processor().commands().size(), qxcm::CommandQueue::kMostTexts);
  }
  EXPECT_GE(line.TakeWithAcks(4096).size(), 4096u);
  EXPECT_TRUE(qxtest::WaitUntil([&] { return service.processor().commands().size() == 0; }));
  line.Exchange("GT_OMD");  // and an ACK that was still under way
  EXPECT_TRUE(qxtest::WaitUntil([&] { return line.Exchange("GT_OMD") == qxtest::ReplyFrame("OMD") + "\x06"; }));
}

TEST(Flood, OfBytesWithoutAFrameEndTakesNoMemory) {
  Watchdog watchdog;
  qxtest::MemoryLine line;
  qxcm::CommManager service(u"COM5:", line.MakeLink());
  const std::string bytes(32768, 'C');
  line.Send(bytes);
  const std::size_t before = ResidentBytes();
  for (int i = 0; i < 512; ++i) line.Send(bytes);
  EXPECT_LT(ResidentBytes(), before + (1u << 20));
  line.Send("\r");
  EXPECT_EQ(line.Exchange("GT_OMD"), qxtest::ReplyFrame("OMD") + "\x06");
}

TEST(Flood, OfLongCommandsKeepsToItsMebibyte) {
  Watchdog watchdog;
  qxtest::MemoryLine line;
  qxcm::CommManager service(u"COM5:", line.MakeLink());
  const std::string command = CommandFrame("X," + std::string(8000, 'x'));
  {
    line.Send(CommandFrame("GT_OMD"));
    qxcm::Guard hold(service.lock());
    for (int i = 0; i < 5000; ++i) line.Send(command);
    EXPECT_LE(service.processor().commands().size() * 8000, std::size_t{1} << 20);
  }
  EXPECT_TRUE(qxtest::WaitUntil([&] { return service.processor().commands().size() == 0; }));
}

TEST(Flood, OfCommandsWhoseAnswersNobodyReadsStopsAndEndsWithTheReading) {
  Watchdog watchdog;
  World world;
  const OpenService service;
  const std::string command = CommandFrame("GT_OMD,ANG,TLT,DST,KEY");
  std::size_t sent = 0;
  for (int i = 0; i < 20000; ++i) sent += world.controller().TrySend(command);
  EXPECT_GT(sent, 0u);
  EXPECT_LE(qxcm::QueuedCommands(), qxcm::CommandQueue::kMostTexts);
  QCM_WCHAR name[16];
  EXPECT_EQ(QCMGetPortName(service.handle(), name, sizeof name), QCM_OK);
  world.controller().Send("\r");
  std::string last;
  while (last.find("ANG=21") == std::string::npos) {
    world.controller().Send(CommandFrame("ST_OMD,ANG=21") + CommandFrame("GT_OMD,ANG"));
    last = world.controller().ReceiveUntilQuiet(milliseconds(200));
  }
}

TEST(Flood, OnOnePortLeavesTheOtherServiceAlone) {
  Watchdog watchdog;
  World world;
  Controller bluetooth(host::AttachPty("COMBT:"));
  const OpenService cable;
  const OpenService radio(u"COMBT:");
  const std::string command = CommandFrame("GT_OMD,ANG,TLT,DST,KEY");
  for (int i = 0; i < 5000; ++i) world.controller().TrySend(command);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(bluetooth.Exchange("GT_OMD"), qxtest::ReplyFrame("OMD") + "\x06");
  world.controller().ReceiveUntilQuiet(milliseconds(200));
}

}  // namespace
