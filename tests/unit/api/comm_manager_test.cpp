// One open service over a link in memory: its port, its states, what is sent in which of them.
#include "api/comm_manager.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "QXCommMgr.h"
#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "link/comm_io_exception.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using qxcm::CommManager;
using qxtest::CommandFrame;
using qxtest::kAck;
using qxtest::MemoryLine;
using qxtest::MessageFrame;
using qxtest::ReplyFrame;

struct Service {
  explicit Service(LPCWSTR port = u"COM5:") : manager(port, line.MakeLink()) {}
  bool Answers() { return line.Exchange("GT_OMD") == ReplyFrame("OMD") + std::string(kAck); }

  MemoryLine line;
  CommManager manager;
};

// ---- Opening

TEST(CommManager, NormalisesThePortName) {
  EXPECT_EQ(Service(u"com1").manager.port_name(), u"COM1:");
  EXPECT_EQ(Service(u"Com1:").manager.port_name(), u"COM1:");
  EXPECT_EQ(Service(u"").manager.port_name(), u":");
  EXPECT_EQ(Service(u"::").manager.port_name(), u"::");
}

TEST(CommManager, OpensBluetoothByItsNameInAnyCase) {
  for (const LPCWSTR name : {u"COMBT:", u"combt", u"ComBt:"}) {
    Service service(name);
    EXPECT_EQ(service.line.port(), "COMBT:");
    EXPECT_EQ(service.manager.port_name(), u"COMBT:");
  }
}

TEST(CommManager, OpensTheCableByAnyOtherName) {
  for (const LPCWSTR name : {u"COM1", u"", u"COMBT::", u"COMBT1:", u" COMBT:", u"COM"}) {
    EXPECT_EQ(Service(name).line.port(), "COM5:");
  }
}

TEST(CommManager, RefusesAMissingName) {
  MemoryLine line;
  try {
    CommManager manager(nullptr, line.MakeLink());
    FAIL();
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "null pointer.");
  }
  EXPECT_EQ(line.opens(), 0);
}

TEST(CommManager, FailsWhenThePortCannotBeOpened) {
  MemoryLine line;
  line.RefuseToOpen(true);
  try {
    CommManager manager(u"COM5:", line.MakeLink());
    FAIL();
  } catch (const qxcm::comm_io_exception& error) {
    EXPECT_STREQ(error.what(), "cannot open port.");
  }
}

TEST(CommManager, FailsWithoutADispatcherThreadAndClosesThePort) {
  MemoryLine line;
  const qxtest::Failing fault("CreateThread", ERROR_NOT_ENOUGH_MEMORY, 1, qxtest::kForGood);
  EXPECT_THROW(CommManager(u"COM5:", line.MakeLink()), std::runtime_error);
  EXPECT_FALSE(line.is_open());
}

TEST(CommManager, LeavesNeitherThreadNorHandle) {
  const std::size_t handles = host::LibraryHandles();
  {
    Service service;
    EXPECT_TRUE(service.Answers());
    EXPECT_EQ(host::LibraryThreads(), 1u);
  }
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(host::LibraryHandles(), handles);
}

// ---- Suspending

TEST(CommManager, ClosesThePortWhenSuspendedAndOpensItWhenResumed) {
  Service service;
  EXPECT_EQ(service.manager.Suspend(), QCM_OK);
  EXPECT_FALSE(service.line.is_open());
  EXPECT_EQ(service.manager.Resume(), QCM_OK);
  EXPECT_TRUE(service.line.is_open());
  EXPECT_TRUE(service.Answers());
}

TEST(CommManager, MayBeSuspendedTwiceAndResumedTwice) {
  Service service;
  EXPECT_EQ(service.manager.Suspend(), QCM_OK);
  EXPECT_EQ(service.manager.Suspend(), QCM_OK);
  EXPECT_EQ(service.manager.Resume(), QCM_OK);
  EXPECT_EQ(service.manager.Resume(), QCM_OK);
  EXPECT_TRUE(service.Answers());
}

TEST(CommManager, ResumesOnThePortOfItsName) {
  Service service(u"combt");
  service.manager.Suspend();
  service.manager.Resume();
  EXPECT_EQ(service.line.port(), "COMBT:");
  EXPECT_EQ(service.line.opens(), 2);
}

TEST(CommManager, StaysSuspendedWhenThePortCannotBeReopened) {
  Service service;
  service.manager.Suspend();
  service.line.RefuseToOpen(true);
  EXPECT_EQ(service.manager.Resume(), QCM_PORT_FAILED);
  service.manager.SendAsynchronous("MDT");
  service.line.RefuseToOpen(false);
  EXPECT_EQ(service.manager.Resume(), QCM_OK);
  EXPECT_EQ(service.line.Take(), "");
  EXPECT_TRUE(service.Answers());
}

TEST(CommManager, WritesNothingWhileSuspendedAndKeepsNothingForLater) {
  Service service;
  service.manager.Suspend();
  service.manager.SendReply("REP");
  service.manager.SendAsynchronous("MSG");
  service.manager.SendControlByte(0x06);
  service.manager.Resume();
  EXPECT_EQ(service.line.Take(), "");
}

TEST(CommManager, CarriesOutWhatIsQueuedWhileItIsSuspended) {
  Service service;
  {
    qxcm::Guard hold(service.manager.lock());  // ST_OMD waits for it
    service.line.Send(CommandFrame("ST_OMD,KEY=1"));
    service.manager.Suspend();
  }
  EXPECT_TRUE(qxtest::WaitUntil([&] {
    qxcm::Guard guard(service.manager.lock());
    return service.manager.measured_data().output_modes().key == 1;
  }));
  service.manager.Resume();
  EXPECT_TRUE(service.Answers()) << "and its ACK is not sent late";
}

TEST(CommManager, ForgetsAHalfFrameWhenSuspended) {
  Service service;
  service.line.Send("C<GT_OMD");
  service.manager.Suspend();
  service.manager.Resume();
  service.line.Send(CommandFrame("GT_OMD").substr(8));
  EXPECT_TRUE(service.Answers());
}

TEST(CommManager, KeepsItsModesWhileSuspended) {
  Service service;
  service.line.Exchange("ST_OMD,ANG=1");
  service.manager.Suspend();
  service.manager.Resume();
  EXPECT_EQ(service.line.Exchange("GT_OMD,ANG"), ReplyFrame("OMD,ANG=1") + std::string(kAck));
}

// ---- Sending

TEST(CommManager, FramesRepliesAndMessages) {
  Service service;
  service.manager.SendReply("REP,A=1");
  service.manager.SendAsynchronous("MDT");
  service.manager.SendControlByte(0x06);
  EXPECT_EQ(service.line.Take(), ReplyFrame("REP,A=1") + MessageFrame("MDT") + std::string(kAck));
}

TEST(CommManager, KeepsFramesOfSeveralThreadsWhole) {
  Service service;
  const auto send = [&] {
    for (int i = 0; i < 500; ++i) service.manager.SendAsynchronous("MDT,KEY=0A");
  };
  std::thread other(send);
  send();
  other.join();
  std::string expected;
  for (int i = 0; i < 1000; ++i) expected += MessageFrame("MDT,KEY=0A");
  EXPECT_EQ(service.line.Take(), expected);
}

// ---- Closing

TEST(CommManager, RefusesSuspendAndResumeWhenItIsClosing) {
  Service service;
  service.manager.MarkClosing();
  EXPECT_EQ(service.manager.Suspend(), QCM_NO_SERVICE);
  EXPECT_EQ(service.manager.Resume(), QCM_NO_SERVICE);
  EXPECT_TRUE(service.line.is_open()) << "neither has touched the port";
}

TEST(CommManager, ClosesThePortWhenItGoes) {
  MemoryLine line;
  { CommManager manager(u"COM5:", line.MakeLink()); }
  EXPECT_FALSE(line.is_open());
}

TEST(CommManager, FinishesTheCommandInHandBeforeItClosesThePort) {
  MemoryLine line;
  host::Fault slow;
  slow.library = "COREDLL";
  slow.call = "SystemIdleTimerReset";  // made by every command, before its handler
  slow.delay_ms = 60;
  host::AddFault(slow);
  {
    CommManager manager(u"COM5:", line.MakeLink());
    line.Send(CommandFrame("GT_OMD"));
    EXPECT_TRUE(qxtest::WaitUntil([&] { return manager.processor().commands().size() == 0; }));
  }
  host::ClearFaults();
  EXPECT_EQ(line.Take(), ReplyFrame("OMD") + std::string(kAck));
}

TEST(CommManager, MayGoWhileSuspended) {
  Service service;
  service.manager.Suspend();
}

}  // namespace
