// Every platform call that opening, serving and closing make is refused, once at each place and for good: no crash, no
// hang, nothing left behind, and the service works again afterwards.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "common/kernel/handles.h"
#include "instrument/keys.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using qxtest::Failing;
using qxtest::World;

class RefusedCall : public ::testing::TestWithParam<const char*> {};
class RefusedForGood : public ::testing::TestWithParam<const char*> {};

/// Whether a service that opened can be used, or at least be closed.
void OpenUseAndClose(World& world) {
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  if (handle == 0) return;
  world.controller().Send(qxtest::CommandFrame("GT_OMD"));
  QCMSuspendComm(handle);
  QCMResumeComm(handle);
  world.controller().ReceiveUntilQuiet(std::chrono::milliseconds(20));
  // Only a platform that keeps refusing can keep a service from being closed.
  for (int attempt = 0; QCMCloseComm(handle) != QCM_OK; ++attempt) ASSERT_LT(attempt, 3);
}

/// Answers to commands that had been left unread may come first.
bool Answers(World& world) {
  const std::string answer = qxtest::ReplyFrame("OMD,KEY=0") + std::string(qxtest::kAck);
  world.controller().Send(qxtest::CommandFrame("GT_OMD,KEY"));
  std::string received;
  return qxtest::WaitUntil([&] {
    received += world.controller().ReceiveAcks(1);
    return received.size() >= answer.size() && received.substr(received.size() - answer.size()) == answer;
  });
}

/// On a thread of its own: nothing that this one may have kept helps it.
void ExpectWorks(World& world) {
  std::thread([&] {
    const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
    EXPECT_NE(handle, 0u);
    EXPECT_TRUE(Answers(world));
    EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
  }).join();
}

TEST_P(RefusedCall, OnceAtEachPlaceLeavesNothingBroken) {
  const qxtest::Watchdog watchdog(std::chrono::seconds(60));
  World world;
  for (std::uint64_t place = 1; place <= 12; ++place) {
    {
      const Failing fault(GetParam(), ERROR_GEN_FAILURE, place);
      OpenUseAndClose(world);
    }
    ExpectWorks(world);
  }
}

TEST_P(RefusedForGood, LeavesNothingBroken) {
  const qxtest::Watchdog watchdog(std::chrono::seconds(60));
  World world;
  {
    const Failing fault(GetParam(), ERROR_GEN_FAILURE, 1, qxtest::kForGood);
    OpenUseAndClose(world);
  }
  ExpectWorks(world);
}

TEST_P(RefusedCall, FromTheMomentTheServiceIsOpenDoesNotKeepItFromClosing) {
  const qxtest::Watchdog watchdog(std::chrono::seconds(60));
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_TRUE(Answers(world));
  {
    const Failing fault(GetParam(), ERROR_GEN_FAILURE, 1, qxtest::kForGood);
    world.controller().Send(qxtest::CommandFrame("GT_OMD"));
    world.controller().ReceiveUntilQuiet(std::chrono::milliseconds(20));
    QCMCloseComm(handle);
  }
  QCMCloseComm(handle);
  ExpectWorks(world);
}

TEST(RefusedCallDeathTest, ResumeThreadForGoodOpensNoServiceAndDoesNotHang) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // threads that never run stay behind: in a process of its own
  EXPECT_EXIT(
      {
        const qxtest::Watchdog watchdog(std::chrono::seconds(60));
        World world;
        const Failing fault("ResumeThread", ERROR_GEN_FAILURE, 1, qxtest::kForGood);
        std::_Exit(QCMOpenComm(u"COM5:") == 0 ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

constexpr const char* kCalls[] = {
    "CreateFileW",        "SetupComm",      "GetCommState",        "SetCommState",
    "SetCommTimeouts",    "SetCommMask",    "WaitCommEvent",       "ClearCommError",
    "ReadFile",           "WriteFile",      "CreateThread",        "CreateEventW",
    "EventModify",        "CreateMutexW",   "ReleaseMutex",        "WaitForSingleObject",
    "CreateFileMappingW", "MapViewOfFile",  "UnmapViewOfFile",     "WaitForMultipleObjects",
    "GetWindowLongW",     "SetWindowLongW", "CallWindowProcW",     "MsgWaitForMultipleObjectsEx",
    "PeekMessageW",       "CharUpperBuffW", "SetSystemPowerState", "SystemIdleTimerReset",
    "IsWindow",           "InSendMessage",  "GetCurrentProcessId", "GetTickCount",
};
std::string NameOf(const ::testing::TestParamInfo<const char*>& call) { return call.param; }

// CloseHandle is left out: its refusal is a leak by itself. So is ResumeThread's when it is for good.
INSTANTIATE_TEST_SUITE_P(Platform, RefusedCall, ::testing::ValuesIn(kCalls), NameOf);
INSTANTIATE_TEST_SUITE_P(ResumeThread, RefusedCall, ::testing::Values("ResumeThread"), NameOf);
INSTANTIATE_TEST_SUITE_P(Platform, RefusedForGood, ::testing::ValuesIn(kCalls), NameOf);

}  // namespace
