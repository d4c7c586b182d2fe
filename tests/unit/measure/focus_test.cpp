// ST_FOC, GT_FOS and the focus worker, with a focusing side that answers when the test wants it to.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "common/kernel/handles.h"
#include "unit/measure/focusing_service.h"

namespace qxtest {
namespace {

using Texts = std::vector<std::string>;

const std::string kAutofocusFailed = MessageFrame("FOS,AFO=ER_FAL");
const std::string kManualFailed = MessageFrame("FOS,MFO=ER_FAL");

/// The starting call that a job makes.
Texts CallOf(const std::string& command) {
  Focusing service;
  service.Outcome(command, false);
  return service.Calls({31, 32, 64, 65, 66});
}

// ---- ST_FOC: the request

TEST(ST_FOC, StartsAutofocus) { EXPECT_EQ(CallOf("ST_FOC,AFO=1"), Texts{"32(1)"}); }

TEST(ST_FOC, FocusesFarAndNear) {
  EXPECT_EQ(CallOf("ST_FOC,MFO=F"), Texts{"31(5000)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=N"), Texts{"31(1.45)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=F12"), Texts{"31(5000)"}) << "the first character counts";
}

TEST(ST_FOC, FocusesToADistance) {
  EXPECT_EQ(CallOf("ST_FOC,MFO=D12.5"), Texts{"31(12.5)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=D-1.5e1m"), Texts{"31(-15)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=D"), Texts{"31(0)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=Dx"), Texts{"31(0)"});
}

TEST(ST_FOC, MovesToAPosition) {
  EXPECT_EQ(CallOf("ST_FOC,MFO=C5"), Texts{"65(5)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=C12x"), Texts{"65(12)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=C"), Texts{"65(0)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=Cx"), Texts{"65(0)"});
}

TEST(ST_FOC, MovesByAsManyStepsAsASignedNumberTells) {
  EXPECT_EQ(CallOf("ST_FOC,MFO=C+5"), Texts{"66(5)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=C-5"), Texts{"66(-5)"});
  EXPECT_EQ(CallOf("ST_FOC,MFO=C+"), Texts{"66(0)"});
}

TEST(ST_FOC, RefusesBothKeysTogetherEvenToStop) {
  Focusing service;
  for (const char* fields : {"AFO=1,MFO=F", "MFO=0,AFO=0", "AFO,MFO"}) {
    EXPECT_EQ(service.Answer("ST_FOC," + std::string(fields)), "ER_PRM") << fields;
  }
  EXPECT_EQ(service.Calls({31, 32, 64, 65, 66}), Texts{});
}

TEST(ST_FOC, DoesNothingWithoutItsKeys) {
  Focusing service;
  EXPECT_EQ(service.Answer("ST_FOC"), "ok");
  EXPECT_EQ(service.Answer("ST_FOC,XYZ=1,afo=1"), "ok");
  EXPECT_EQ(service.Calls({31, 32, 64, 65, 66}), Texts{});
}

TEST(ST_FOC, RefusesEveryOtherValue) {
  Focusing service;
  for (const char* field : {"AFO", "AFO=10", "AFO=11", "AFO=00", "AFO=2", "AFO=x", "AFO= 1", "MFO", "MFO=n", "MFO=f",
                            "MFO=d12", "MFO=c5", "MFO=1", "MFO=00", "MFO=0 ", "MFO= F", "MFO=-5", "MFO=X"}) {
    EXPECT_EQ(service.Answer("ST_FOC," + std::string(field)), "ER_PRM") << field;
  }
  EXPECT_EQ(service.Calls({31, 32, 64, 65, 66}), Texts{});
  EXPECT_TRUE(service.FocusesAgain());
}

// ---- ST_FOC: stopping

TEST(ST_FOC, StopsByEitherKeyAndTellsNothingLater) {
  Focusing service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  EXPECT_EQ(service.Answer("ST_FOC,AFO=0"), "ok");
  EXPECT_EQ(service.Answer("ST_FOC,MFO=0"), "ok");
  EXPECT_EQ(service.Calls({31, 32, 64, 65, 66}), (Texts{"64()", "64()"}));
  EXPECT_EQ(window.seen(), std::vector<SeenMessage>{});
  EXPECT_TRUE(service.FocusesAgain()) << "no outcome of the stops comes between";
}

TEST(ST_FOC, StopDoesNotLookAtItsResult) {
  Focusing service;
  service.Fail(64);
  EXPECT_EQ(service.Answer("ST_FOC,AFO=0"), "ok");
}

TEST(ST_FOC, StopWhileAJobRunsDoesNotEndIt) {
  Focusing service;
  service.Answer("ST_FOC,MFO=F");
  EXPECT_TRUE(WaitUntil([&] { return service.Calls({31}).size() == 1; }));
  EXPECT_EQ(service.Answer("ST_FOC,MFO=0"), "ok");
  EXPECT_EQ(service.Answer("ST_FOC,AFO=1"), "ER_FAL") << "it still runs";
  EXPECT_NE(service.BlockEvent(), 0u);
  service.Complete(false);
  EXPECT_EQ(service.Await("FOS,MFO=0"), MessageFrame("FOS,MFO=0"));
}

// ---- ST_FOC: notices

TEST(ST_FOC, PostsANoticeThatTellsAutofocusFromManualFocus) {
  Focusing service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Outcome("ST_FOC,AFO=1", false);
  service.Outcome("ST_FOC,MFO=F", false);
  service.Outcome("ST_FOC,MFO=C+1", true);
  EXPECT_EQ(
      window.WaitForSeen(3),
      (std::vector<SeenMessage>{{kNotice, 3584, 1, false}, {kNotice, 3584, 2, false}, {kNotice, 3584, 2, false}}));
}

TEST(ST_FOC, PostsNoNoticeForAJobThatCannotStart) {
  Focusing service;
  TestWindow window;
  service.manager.notify_list().Register(window.handle(), kNotice);
  service.Answer("ST_FOC,AFO=1");
  EXPECT_EQ(service.Answer("ST_FOC,MFO=F"), "ER_FAL");
  service.Answer("ST_HAN,HAN=1");
  EXPECT_EQ(window.WaitForSeen(2), (std::vector<SeenMessage>{{kNotice, 3584, 1, false}, {kNotice, 513, 0, false}}));
  service.Complete(false);
}

// ---- The worker

TEST(FocusWorker, TellsTheOutcomeUnderTheKeyOfTheJob) {
  Focusing service;
  for (const char* field : {"AFO=1", "MFO=F", "MFO=N", "MFO=D5", "MFO=C1", "MFO=C+1"}) {
    const std::string command = "ST_FOC," + std::string(field);
    const std::string key = command.substr(7, 3);
    EXPECT_EQ(service.Outcome(command, false), MessageFrame("FOS," + key + "=0")) << field;
    EXPECT_EQ(service.Outcome(command, true), MessageFrame("FOS," + key + "=ER_FAL")) << field;
    EXPECT_EQ(service.BlockEvent(), 0u);
  }
}

TEST(FocusWorker, AnswersAtOnceAndWritesItsEventAndCallerIntoTheBlock) {
  Focusing service;
  EXPECT_EQ(service.line.Exchange("ST_FOC,AFO=1"), kAck);
  EXPECT_TRUE(WaitUntil([&] { return service.Calls({32}).size() == 1; }));
  EXPECT_NE(service.BlockEvent(), 0u);
  EXPECT_NE(service.side->Read().owner, 0u);
  service.Complete(false);
  EXPECT_EQ(service.Await("FOS,AFO=0"), MessageFrame("FOS,AFO=0"));
  EXPECT_EQ(service.BlockEvent(), 0u);
}

TEST(FocusWorker, ReportsFailureForARefusedStartAndFreesTheBlock) {
  const std::vector<std::pair<int, std::string>> starts = {
      {32, "AFO=1"}, {31, "MFO=D2"}, {66, "MFO=C-1"}, {65, "MFO=C1"}};
  for (const auto& [ordinal, field] : starts) {
    for (const std::int64_t result : {-1, 1}) {
      Focusing service;
      service.Fail(ordinal, result);
      const std::string failed = "FOS," + field.substr(0, 3) + "=ER_FAL";
      EXPECT_EQ(service.Told("ST_FOC," + field, failed), MessageFrame(failed)) << ordinal;
      EXPECT_EQ(service.BlockEvent(), 0u);
      host::ClearFaults();
      EXPECT_TRUE(service.FocusesAgain());
    }
  }
}

TEST(FocusWorker, LooksAtTheFailureFlagOnly) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([&] { return service.Calls({32}).size() == 1; }));
  service.Change([](FocusBlockData& block) { block.state = 4; });
  service.Complete(false);
  EXPECT_EQ(service.Await("FOS,AFO=0"), MessageFrame("FOS,AFO=0"));
}

TEST(FocusWorker, StartsNothingWhileAnotherJobOwnsTheBlock) {
  Focusing service;
  service.Change([](FocusBlockData& block) { block.event = 77; });
  EXPECT_EQ(service.Told("ST_FOC,MFO=F", "FOS,MFO=ER_FAL"), kManualFailed);
  EXPECT_EQ(service.Told("ST_FOC,AFO=1", "FOS,AFO=ER_FAL"), kAutofocusFailed);
  EXPECT_EQ(service.Calls({31, 32}), Texts{});
  EXPECT_EQ(service.BlockEvent(), 77u) << "and leaves the owner's event";
  EXPECT_EQ(service.side->Read().owner, 0u);
  service.Change([](FocusBlockData& block) { block.event = 0; });
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, RefusesASecondJobAndLeavesTheRunningOneAlone) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  for (const char* command : {"ST_FOC,AFO=1", "ST_FOC,MFO=F", "ST_FOC,MFO=C+5"}) {
    EXPECT_EQ(service.Answer(command), "ER_FAL");
  }
  service.Complete(false);
  EXPECT_EQ(service.Await("FOS,AFO=0"), MessageFrame("FOS,AFO=0"));
  EXPECT_EQ(service.Calls({31, 32, 65, 66}), Texts{"32(1)"});
}

TEST(FocusWorker, ChecksAValueBeforeItLooksForARunningJob) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  EXPECT_EQ(service.Answer("ST_FOC,MFO=x"), "ER_PRM");
  service.Complete(false);
  service.Await("FOS,AFO=0");
}

TEST(FocusWorker, TakesTheNextJobAsSoonAsTheOutcomeIsTold) {
  Focusing service;
  for (int job = 0; job < 100; ++job) ASSERT_TRUE(service.FocusesAgain()) << job;
}

TEST(FocusWorker, SendsNoOutcomeWhileSuspended) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  service.manager.Suspend();
  service.Complete(false);
  EXPECT_TRUE(WaitUntil([] { return host::LibraryThreads() == 1; })) << "the worker ends";
  service.manager.Resume();
  EXPECT_EQ(service.line.Take(), "");
  EXPECT_EQ(service.BlockEvent(), 0u);
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, OfTwoServicesOnOneInstrumentOnlyTheFirstFocuses) {
  Focusing first;
  MemoryLine line;
  qxcm::CommManager second(u"COMBT", line.MakeLink());
  first.Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([&] { return first.BlockEvent() != 0; }));
  line.Send(CommandFrame("ST_FOC,MFO=F"));
  std::string written;
  EXPECT_TRUE(WaitUntil([&] { return (written += line.Take()).find(kManualFailed) != std::string::npos; }));
  first.Complete(false);
  EXPECT_EQ(first.Await("FOS,AFO=0"), MessageFrame("FOS,AFO=0"));
  EXPECT_EQ(first.Calls({31, 32}), Texts{"32(1)"});
}

TEST(FocusWorker, LeavesNeitherThreadNorHandle) {
  const auto side = FocusSide::Instance();
  const std::size_t handles = host::LibraryHandles();
  {
    Focusing service;
    for (int job = 0; job < 3; ++job) EXPECT_TRUE(service.FocusesAgain());
  }
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(host::LibraryHandles(), handles);
}

// ---- What the platform may refuse

TEST(FocusWorker, ThatCannotHaveAThreadIsAFailedCommand) {
  Focusing service;
  {
    const Failing fault("CreateThread");
    EXPECT_EQ(service.Answer("ST_FOC,AFO=1"), "ER_FAL");
  }
  EXPECT_EQ(service.Calls({32}), Texts{});
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, ThatIsNotResumedAtOnceStillRuns) {
  Focusing service;
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = std::string("ResumeThread");
  fault.result = 0xFFFFFFFF;
  host::AddFault(fault);
  EXPECT_TRUE(service.FocusesAgain());
}

TEST(FocusWorker, ThatCannotHaveItsEventOrBlockReportsFailure) {
  for (const char* call : {"CreateEventW", "CreateFileMappingW", "MapViewOfFile", "CreateMutexW"}) {
    Focusing service;
    {
      const Failing fault(call);
      EXPECT_EQ(service.Told("ST_FOC,AFO=1", "FOS,AFO=ER_FAL"), kAutofocusFailed) << call;
    }
    EXPECT_EQ(service.Calls({32}), Texts{}) << call;
    EXPECT_EQ(service.BlockEvent(), 0u) << call;
    EXPECT_TRUE(service.FocusesAgain()) << call;
  }
}

// The waits of a job: for the block, for the focusing side, for the block twice more.
TEST(FocusWorker, WhoseWaitIsRefusedOnceReportsAndFreesTheBlock) {
  for (const std::uint64_t nth : {1u, 2u, 3u, 4u}) {
    Focusing service;
    service.side->SetAnswer(FocusAnswer::kSuccess);
    {
      const Failing fault("WaitForSingleObject", ERROR_INVALID_HANDLE, nth);
      service.line.Send(CommandFrame("ST_FOC,AFO=1"));
      std::string written;
      EXPECT_TRUE(WaitUntil([&] { return (written += service.line.Take()).find("<FOS,AFO=") != std::string::npos; }));
    }
    EXPECT_EQ(service.BlockEvent(), 0u) << "refused wait " << nth;
  }
}

// ---- GT_FOS

std::string Focus(const std::function<void(FocusBlockData&)>& change, const std::string& keys = "AFO,MFO,CPS,DPS") {
  Focusing service;
  service.Change(change);
  return service.Answer("GT_FOS," + keys);
}

TEST(GT_FOS, AnswersInItsOwnOrderWhateverTheRequests) {
  EXPECT_EQ(Focus([](FocusBlockData&) {}, "DPS,CPS,MFO,AFO"), "FOS,AFO=0,MFO=0,CPS=0,DPS=1.5000");
  EXPECT_EQ(Focus([](FocusBlockData&) {}, "DPS,MFO"), "FOS,MFO=0,DPS=1.5000");
}

TEST(GT_FOS, AnswersTheWordAloneWithoutItsKeys) {
  EXPECT_EQ(Focusing().Answer("GT_FOS"), "FOS");
  EXPECT_EQ(Focusing().Answer("GT_FOS,afo,XYZ=1"), "FOS");
}

TEST(GT_FOS, LooksAtThePresenceOfAKeyOnly) { EXPECT_EQ(Focusing().Answer("GT_FOS,AFO=7"), "FOS,AFO=0"); }

TEST(GT_FOS, ReportsARunningAutofocusUnderBothKeys) {
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.automatic = 1; }, "AFO,MFO"), "FOS,AFO=1,MFO=1");
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.automatic = 0x80; }, "AFO,MFO"), "FOS,AFO=1,MFO=1");
}

TEST(GT_FOS, TakesStateFourForACancelledAutofocus) {
  for (const std::uint32_t state : {0u, 1u, 2u, 3u, 5u, 0x104u, 0xFFFFFFFFu}) {
    EXPECT_EQ(Focus([=](FocusBlockData& block) { block.automatic = 1, block.state = state; }, "AFO"), "FOS,AFO=1");
  }
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.automatic = 1, block.state = 4; }, "AFO,MFO"), "FOS,AFO=0,MFO=0");
}

TEST(GT_FOS, ReportsManualFocusWhateverTheState) {
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.manual = 1; }, "AFO,MFO"), "FOS,AFO=0,MFO=1");
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.manual = 0xFF, block.state = 4, block.automatic = 1; }, "AFO,MFO"),
            "FOS,AFO=0,MFO=1");
}

TEST(GT_FOS, ReportsPositionAndDistance) {
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.position = -12345, block.distance = 12345; }, "CPS,DPS"),
            "FOS,CPS=-12345,DPS=1.2345");
  EXPECT_EQ(Focus([](FocusBlockData& block) { block.position = INT32_MIN, block.distance = 0; }, "CPS,DPS"),
            "FOS,CPS=-2147483648,DPS=0.0000");
}

TEST(GT_FOS, CallsTheSystemLibraryForTheDistanceOnlyAndTakesItFromTheBlock) {
  Focusing service;
  service.Answer("GT_FOS,AFO,MFO,CPS");
  EXPECT_EQ(service.Calls({30}), Texts{});
  service.Fail(30);
  EXPECT_EQ(service.Answer("GT_FOS,DPS"), "FOS,DPS=1.5000");
  EXPECT_EQ(service.Calls({30}), Texts{"30()"});
}

TEST(GT_FOS, AnswersWhileAJobRuns) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([&] { return service.side->Read().automatic != 0; }));
  EXPECT_EQ(service.Answer("GT_FOS,AFO,MFO"), "FOS,AFO=1,MFO=1");
  service.Complete(false);
  service.Await("FOS,AFO=0");
  EXPECT_EQ(service.Answer("GT_FOS,AFO,MFO"), "FOS,AFO=0,MFO=0");
}

TEST(GT_FOS, WritesNothingWhileSuspended) { EXPECT_EQ(Focusing().WrittenOfSuspended("GT_FOS,AFO"), ""); }

TEST(GT_FOS, FailsWithoutTheBlockAndAnswersTheNextTime) {
  for (const char* call : {"CreateFileMappingW", "MapViewOfFile", "CreateMutexW", "WaitForSingleObject"}) {
    Focusing service;
    const std::size_t handles = host::LibraryHandles();
    {
      const Failing fault(call);
      EXPECT_EQ(service.Answer("GT_FOS,AFO"), "ER_FAL") << call;
    }
    EXPECT_EQ(service.Answer("GT_FOS,AFO"), "FOS,AFO=0") << call;
    EXPECT_EQ(host::LibraryHandles(), handles) << call;
  }
}

}  // namespace
}  // namespace qxtest
