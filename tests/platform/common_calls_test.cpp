// The call log and the fault table, as the simulator and the other tests use them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "common/calls/ce_calls.h"
#include "common/calls/entry.h"
#include "common/streams/streams.h"
#include "common/system/power.h"
#include "controller_line.h"

namespace {

using host::CallRecord;
using host::CallValue;
using host::Fault;

class Calls : public testing::Test {
 protected:
  Calls() {
    host::EnableCallLog(true);
    host::CallsSince(0, &start_);
  }
  ~Calls() override {
    host::ClearFaults();
    host::EnableCallLog(false);
    host::SetCallObserver(nullptr);
  }

  std::vector<CallRecord> Listed() const { return host::CallsSince(start_, nullptr); }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const CallRecord& record : Listed()) names.push_back(std::get<std::string>(record.call));
    return names;
  }

 private:
  std::uint64_t start_ = 0;
};

using CallLog = Calls;
using FaultTable = Calls;

Fault FaultOn(std::string call) {
  Fault fault;
  fault.library = "COREDLL";
  fault.call = std::move(call);
  return fault;
}

Fault ErrorOn(std::string call, std::uint32_t error) {
  Fault fault = FaultOn(std::move(call));
  fault.error = error;
  return fault;
}

DWORD WakeUp() { return SetSystemPowerState(nullptr, host::kPowerOn, 0x1000); }

// A stream of zero bytes.
class Tape : public host::Stream {
 public:
  explicit Tape(bool listed) : listed_(listed) {}
  std::string Name() const override { return "\\tape"; }
  bool CallsListed() const override { return listed_; }
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override {
    std::memset(buffer, 0, bytes);
    *read = bytes;
    return TRUE;
  }
  BOOL Write(const void*, DWORD bytes, DWORD* written) override {
    *written = bytes;
    return TRUE;
  }

 private:
  bool listed_;
};

const CallValue kNull = nullptr;
CallValue Number(std::int64_t number) { return number; }

TEST_F(CallLog, ListsACallWithItsArgumentsInOrder) {
  EXPECT_EQ(WakeUp(), 0u);
  ASSERT_EQ(Listed().size(), 1u);
  const CallRecord record = Listed()[0];
  EXPECT_EQ(record.library, "COREDLL");
  EXPECT_EQ(record.call, CallValue("SetSystemPowerState"));
  EXPECT_EQ(record.args, (std::vector<CallValue>{kNull, Number(0x10000), Number(0x1000)}));
  EXPECT_EQ(record.result, Number(0));
  EXPECT_EQ(host::PowerState(), host::kPowerOn);
}

TEST_F(CallLog, ListsWhatSetsUpAPortAndNothingElse) {
  ControllerLine line;
  OpenedPort port;
  DCB state = {};
  SetupComm(port, 1024, 1024);
  GetCommState(port, &state);
  SetCommState(port, &state);
  port.Write("x");
  port.Waiting();
  PurgeComm(port, PURGE_RXCLEAR);
  SystemIdleTimerReset();
  EXPECT_EQ(Names(), (std::vector<std::string>{"CreateFileW", "SetCommTimeouts", "SetCommMask", "SetupComm",
                                               "SetCommState", "PurgeComm", "SystemIdleTimerReset"}));
}

TEST_F(CallLog, ListsReadingWritingAndClosingWhereAStreamAsksForIt) {
  const HANDLE listed = host::InsertHandle(std::make_shared<host::StreamHandle>(std::make_shared<Tape>(true)));
  const HANDLE unlisted = host::InsertHandle(std::make_shared<host::StreamHandle>(std::make_shared<Tape>(false)));
  DWORD count = 0;
  char byte = 0;
  for (const HANDLE file : {unlisted, listed}) {
    ReadFile(file, &byte, 1, &count, nullptr);
    WriteFile(file, &byte, 1, &count, nullptr);
    CloseHandle(file);
  }
  EXPECT_EQ(Names(), (std::vector<std::string>{"ReadFile", "WriteFile", "CloseHandle"}));
  EXPECT_EQ(Listed()[1].args.size(), 3u);  // the buffer and the place for the count are left out
}

TEST_F(CallLog, ListsTextsHandlesAndStructures) {
  ControllerLine line;
  const HANDLE port = OpenPort();
  COMMTIMEOUTS timeouts = {0, 0, 5000, 0, 0xABCD};
  SetCommTimeouts(port, &timeouts);
  CloseHandle(port);
  const CallValue handle = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(port));
  const std::vector<CallRecord> records = Listed();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].args,
            (std::vector<CallValue>{"COM5:", Number(0xC0000000), Number(0), kNull, Number(3), Number(0), kNull}));
  EXPECT_EQ(records[0].result, handle);
  EXPECT_EQ(records[1].args, (std::vector<CallValue>{handle,
                                                     "000000000000000088130000"
                                                     "00000000"
                                                     "CDAB0000"}));
  EXPECT_EQ(records[1].result, Number(1));
}

TEST_F(CallLog, NumbersGrowAndAreSharedWithNotices) {
  WakeUp();
  const std::uint64_t notice = host::TakeCallNumber();
  WakeUp();
  const std::vector<CallRecord> records = Listed();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_LT(records[0].n, notice);
  EXPECT_LT(notice, records[1].n);
  EXPECT_LE(records[0].at, records[1].at);
  EXPECT_LE(records[1].at, host::MillisecondsSinceStart());
}

TEST_F(CallLog, TellsEveryCallOnceToOneWhoAsksAgain) {
  std::uint64_t next = 0;
  WakeUp();
  host::CallsSince(0, &next);
  WakeUp();
  EXPECT_EQ(host::CallsSince(next, &next).size(), 1u);
  EXPECT_EQ(host::CallsSince(next, &next).size(), 0u);
}

TEST_F(CallLog, ACallComesBeforeWhatItSetsOff) {
  const auto args = [] { return host::CallValues(); };
  host::Entry("QxSystem", 15, true, args, [&] {
    std::uint64_t next = 0;
    host::Entry("QxSystem", 7, true, args, [] { return 0; });
    EXPECT_TRUE(Listed().empty());  // the outer call has not returned
    host::CallsSince(0, &next);
    EXPECT_LE(next, host::TakeCallNumber() - 2);
    return 0;
  });
  const std::vector<CallRecord> records = Listed();
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].call, Number(15));
  EXPECT_EQ(records[1].call, Number(7));
}

TEST_F(CallLog, KeepsTheNewestCallsOnly) {
  for (std::size_t i = 0; i < host::kCallLogCapacity + 10; ++i) WakeUp();
  const std::vector<CallRecord> records = Listed();
  ASSERT_EQ(records.size(), host::kCallLogCapacity);
  EXPECT_EQ(records.back().n, records.front().n + host::kCallLogCapacity - 1);
  EXPECT_EQ(records.back().n, host::TakeCallNumber() - 1);
}

TEST_F(CallLog, ListsNothingWhileOff) {
  host::EnableCallLog(false);
  WakeUp();
  EXPECT_TRUE(Listed().empty());
}

TEST_F(CallLog, ShowsListedCallsToTheObserver) {
  std::vector<CallRecord> seen;
  host::EnableCallLog(false);
  host::SetCallObserver([&](const CallRecord& record) { seen.push_back(record); });
  WakeUp();
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].result, Number(0));
}

TEST_F(CallLog, ListsFromManyThreadsInOrder) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int call = 0; call < 500; ++call) WakeUp();
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::vector<CallRecord> records = Listed();
  ASSERT_EQ(records.size(), 2000u);
  for (std::size_t i = 1; i < records.size(); ++i) ASSERT_EQ(records[i].n, records[i - 1].n + 1);
}

TEST_F(CallLog, KnowsWhetherAThreadIsInsideACall) {
  const auto args = [] { return host::CallValues(); };
  bool inside = false, still_inside = false;
  EXPECT_FALSE(host::InLibraryCall());
  host::Entry("QxSystem", 1, false, args, [&] {
    inside = host::InLibraryCall();
    host::Entry("QxSystem", 2, false, args, [] {});
    still_inside = host::InLibraryCall();
  });
  EXPECT_TRUE(inside);
  EXPECT_TRUE(still_inside);
  EXPECT_FALSE(host::InLibraryCall());
}

TEST_F(FaultTable, AnErrorAloneFailsTheCallWithoutMakingIt) {
  SetSystemPowerState(nullptr, host::kPowerOn, 0);
  host::AddFault(ErrorOn("SetSystemPowerState", 5));
  EXPECT_EQ(SetSystemPowerState(nullptr, host::kPowerSuspend, 0), 5u);
  EXPECT_EQ(GetLastError(), 5u);
  EXPECT_EQ(host::PowerState(), host::kPowerOn);
}

TEST_F(FaultTable, AResultAloneLeavesTheLastErrorAlone) {
  Fault fault = FaultOn("SetSystemPowerState");
  fault.result = -7;
  host::AddFault(fault);
  SetLastError(77);
  EXPECT_EQ(WakeUp(), static_cast<DWORD>(-7));
  EXPECT_EQ(GetLastError(), 77u);
}

TEST_F(FaultTable, StartsWithTheNthCallAndEndsAfterSoManyTimes) {
  Fault fault = ErrorOn("SetSystemPowerState", 9);
  fault.nth = 3;
  fault.times = 2;
  WakeUp();  // counted from when the fault is added
  host::AddFault(fault);
  std::vector<DWORD> results;
  for (int i = 0; i < 6; ++i) results.push_back(WakeUp());
  EXPECT_EQ(results, (std::vector<DWORD>{0, 0, 9, 9, 0, 0}));
}

TEST_F(FaultTable, IsLimitedToOneDevice) {
  ControllerLine cable;
  ControllerLine radio("COMBT:");
  Fault fault = ErrorOn("CreateFileW", 1167);
  fault.on = "combt:";
  host::AddFault(fault);
  OpenedPort port;
  EXPECT_EQ(OpenPort(TEXT("COMBT:")), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastError(), 1167u);
  EXPECT_NE(HANDLE(port), INVALID_HANDLE_VALUE);
}

TEST_F(FaultTable, KnowsTheDeviceBehindAHandle) {
  ControllerLine line;
  OpenedPort port;
  Fault fault = ErrorOn("WriteFile", 1117);
  fault.on = "COM5:";
  host::AddFault(fault);
  DWORD written = 0;
  EXPECT_FALSE(WriteFile(port, "x", 1, &written, nullptr));
  EXPECT_EQ(GetLastError(), 1117u);
  fault.on = "COMBT:";
  host::AddFault(fault);
  EXPECT_TRUE(WriteFile(port, "x", 1, &written, nullptr));
}

TEST_F(FaultTable, ADelayAloneMakesTheRealCallLater) {
  Fault fault = FaultOn("SetSystemPowerState");
  fault.delay_ms = 60;
  host::AddFault(fault);
  const double start = host::MillisecondsSinceStart();
  EXPECT_EQ(SetSystemPowerState(nullptr, host::kPowerReset, 0), 0u);
  EXPECT_GE(host::MillisecondsSinceStart() - start, 60);
  EXPECT_EQ(host::PowerState(), host::kPowerReset);
}

TEST_F(FaultTable, ADelayWithAnErrorWaitsAndThenFails) {
  Fault fault = ErrorOn("SystemIdleTimerReset", 6);
  fault.delay_ms = 60;
  host::AddFault(fault);
  const double start = host::MillisecondsSinceStart();
  SystemIdleTimerReset();
  EXPECT_GE(host::MillisecondsSinceStart() - start, 60);
  EXPECT_EQ(GetLastError(), 6u);
}

TEST_F(FaultTable, ReachesUnlistedCallsAndListsThoseThatFailed) {
  ControllerLine line;
  OpenedPort port;
  host::AddFault(ErrorOn("GetCommState", 1));
  DCB state = {};
  EXPECT_FALSE(GetCommState(port, &state));
  EXPECT_TRUE(GetCommState(port, &state));
  EXPECT_EQ(Names().back(), "GetCommState");
  EXPECT_EQ(Listed().back().result, Number(0));
}

TEST_F(FaultTable, TakesOrdinalsAsNumbersAndKeepsLibrariesApart) {
  Fault fault;
  fault.library = "QxSystem";
  fault.call = std::int64_t{15};
  fault.result = 3;
  fault.times = 100;
  host::AddFault(fault);
  const auto call = [](const char* library, int ordinal) {
    return host::Entry(
        library, ordinal, true, [] { return host::CallValues(); }, [] { return 1; });
  };
  EXPECT_EQ(call("QxSystem", 15), 3);
  EXPECT_EQ(call("QxSystem", 16), 1);
  EXPECT_EQ(call("BTHUTIL", 15), 1);
}

TEST_F(FaultTable, SeveralFaultsCountEachForItself) {
  Fault second = ErrorOn("SetSystemPowerState", 20);
  second.nth = 2;
  host::AddFault(ErrorOn("SetSystemPowerState", 10));
  host::AddFault(second);
  EXPECT_EQ(WakeUp(), 10u);
  EXPECT_EQ(WakeUp(), 20u);
  EXPECT_EQ(WakeUp(), 0u);
}

TEST_F(FaultTable, ClearingEndsEveryFault) {
  Fault fault = ErrorOn("SetSystemPowerState", 10);
  fault.times = 1000;
  host::AddFault(fault);
  EXPECT_EQ(WakeUp(), 10u);
  host::ClearFaults();
  EXPECT_EQ(WakeUp(), 0u);
}

}  // namespace
