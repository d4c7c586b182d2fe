// Opening and closing services: handles, ports, and what all services of the process share.
#include "api/open_services.h"

#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "api/diagnostics.h"
#include "common/kernel/handles.h"
#include "common/kernel/named_objects.h"
#include "common/kernel/shared_memory.h"
#include "common/ports/ports.h"
#include "common/sync/threads.h"
#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "instrument/keys.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using qxtest::Controller;
using qxtest::Failing;
using qxtest::kAck;
using qxtest::kEventMessage;
using qxtest::ReplyFrame;
using qxtest::TestWindow;
using qxtest::World;
using Calls = std::vector<std::string>;

const std::string kAnswer = ReplyFrame("OMD") + std::string(kAck);

/// Lets one port serve any number of services.
struct SharedPorts {
  SharedPorts() { host::SharePorts(true); }
  ~SharedPorts() { host::SharePorts(false); }
};

LONG_PTR ProcedureOf(World& world) { return host::GetWindowLongW(world.event_window().handle(), GWL_WNDPROC); }

// ---- Handles

TEST(QCMOpenComm, OpensAServiceThatAnswers) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  ASSERT_NE(handle, 0u);
  EXPECT_EQ(world.controller().Exchange("GT_OMD"), kAnswer);
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
}

TEST(QCMOpenComm, MakesHandlesOfTheProcessNumberAndACounter) {
  World world;
  const QCM_HANDLE first = QCMOpenComm(u"COM5:");
  QCMCloseComm(first);
  const QCM_HANDLE second = QCMOpenComm(u"COM5:");
  QCMCloseComm(second);
  EXPECT_EQ(first >> 12, host::GetCurrentProcessId() & 0xFFFFF);
  EXPECT_EQ(second >> 12, first >> 12);
  EXPECT_EQ(second & 0xFFF, (first & 0xFFF) % 4095 + 1);
}

TEST(QCMOpenComm, DoesNotUseUpNumbersForServicesThatCannotBeOpened) {
  World world;
  const QCM_HANDLE first = QCMOpenComm(u"COM5:");
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  QCMCloseComm(first);
  const QCM_HANDLE second = QCMOpenComm(u"COM5:");
  QCMCloseComm(second);
  EXPECT_EQ(second & 0xFFF, (first & 0xFFF) % 4095 + 1);
}

TEST(QCMOpenComm, RefusesTheNinthServiceAtATime) {
  World world;
  const SharedPorts shared;
  std::set<QCM_HANDLE> handles;
  for (int i = 0; i < 8; ++i) handles.insert(QCMOpenComm(u"COM5:"));
  EXPECT_EQ(handles.size(), 8u);
  EXPECT_EQ(handles.count(0), 0u);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_EQ(QCMCloseComm(*handles.begin()), QCM_OK);
  handles.erase(handles.begin());
  handles.insert(QCMOpenComm(u"COM5:"));
  EXPECT_EQ(handles.size(), 8u);
  for (const QCM_HANDLE handle : handles) EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
}

TEST(QCMOpenComm, CountsFrom4095To1AndSkipsNumbersInUse) {
  World world;
  const SharedPorts shared;
  const QCM_HANDLE kept = QCMOpenComm(u"COM5:");
  std::set<QCM_UINT32> numbers;
  QCM_UINT32 last = kept & 0xFFF;
  for (int i = 0; i < 4096; ++i) {
    const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
    const QCM_UINT32 number = handle & 0xFFF;
    const QCM_UINT32 next = last % 4095 + 1;
    ASSERT_EQ(number, next == (kept & 0xFFF) ? next % 4095 + 1 : next);
    last = number;
    numbers.insert(number);
    QCMCloseComm(handle);
  }
  EXPECT_EQ(numbers.size(), 4094u) << "all but 0 and the one in use";
  QCMCloseComm(kept);
}

// ---- Ports

TEST(QCMOpenComm, OpensBluetoothAndTheCableSideBySide) {
  World world;
  Controller bluetooth(host::AttachPty("COMBT:"));
  const QCM_HANDLE cable = QCMOpenComm(u"com1");
  const QCM_HANDLE radio = QCMOpenComm(u"combt");
  ASSERT_NE(radio, 0u);
  EXPECT_EQ(world.controller().Exchange("ST_OMD,ANG=1"), kAck);
  EXPECT_EQ(bluetooth.Exchange("GT_OMD,ANG"), ReplyFrame("OMD,ANG=0") + std::string(kAck)) << "each has its own modes";
  QCMCloseComm(cable);
  EXPECT_EQ(bluetooth.Exchange("GT_OMD"), kAnswer) << "closing one leaves the other";
  QCMCloseComm(radio);
}

TEST(QCMOpenComm, RefusesAPortInUse) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_EQ(QCMOpenComm(u"COM1"), 0u) << "the same port under another name";
  EXPECT_EQ(world.controller().Exchange("GT_OMD"), kAnswer) << "the first service goes on";
  QCMCloseComm(handle);
}

TEST(QCMOpenComm, RefusesAMissingName) {
  World world;
  EXPECT_EQ(QCMOpenComm(nullptr), 0u);
  EXPECT_TRUE(world.Calls({"CreateFileW"}).empty());
}

TEST(QCMOpenComm, RefusesAPortThatCannotBeOpened) {
  World world;
  host::DetachPort("COM5:");
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
}

// ---- The event window

TEST(QCMOpenComm, NeedsAnEventWindow) {
  World world;
  host::instrument::SetEventWindow(nullptr, kEventMessage);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  host::instrument::SetEventWindow(world.event_window().handle(), 1023);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_TRUE(world.Calls({"CreateFileW"}).empty()) << "no port has been touched";
}

TEST(QCMOpenComm, SubclassesTheEventWindowWithTheFirstServiceUntilTheLastIsClosed) {
  World world;
  const SharedPorts shared;
  const LONG_PTR own = ProcedureOf(world);
  const QCM_HANDLE first = QCMOpenComm(u"COM5:");
  const LONG_PTR librarys = ProcedureOf(world);
  EXPECT_NE(librarys, own);
  const QCM_HANDLE second = QCMOpenComm(u"COM5:");
  EXPECT_EQ(ProcedureOf(world), librarys);
  QCMCloseComm(first);
  EXPECT_EQ(ProcedureOf(world), librarys);
  QCMCloseComm(second);
  EXPECT_EQ(ProcedureOf(world), own);
  EXPECT_EQ(world.Calls({"63"}).size(), 1u) << "asked for once";
}

TEST(QCMOpenComm, PutsTheEventWindowBackWhenTheFirstServiceCannotBeOpened) {
  World world;
  const LONG_PTR own = ProcedureOf(world);
  EXPECT_EQ(QCMOpenComm(nullptr), 0u);
  EXPECT_EQ(ProcedureOf(world), own);
  const Failing fault("CreateFileW", ERROR_ACCESS_DENIED);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_EQ(ProcedureOf(world), own);
}

TEST(QCMOpenComm, LeavesTheEventWindowWhenALaterServiceCannotBeOpened) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  const LONG_PTR librarys = ProcedureOf(world);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u);
  EXPECT_EQ(ProcedureOf(world), librarys);
  QCMCloseComm(handle);
}

TEST(QCMOpenComm, AsksForTheEventWindowAnewAfterTheLastClose) {
  World world;
  QCMCloseComm(QCMOpenComm(u"COM5:"));
  TestWindow other;
  host::instrument::SetEventWindow(other.handle(), kEventMessage);
  const LONG_PTR own = host::GetWindowLongW(other.handle(), GWL_WNDPROC);
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_NE(host::GetWindowLongW(other.handle(), GWL_WNDPROC), own);
  QCMCloseComm(handle);
  EXPECT_EQ(host::GetWindowLongW(other.handle(), GWL_WNDPROC), own);
}

TEST(QCMOpenComm, OpensThoughTheEventWindowHasGoneUnderAnOpenService) {
  World world;
  const SharedPorts shared;
  const QCM_HANDLE first = QCMOpenComm(u"COM5:");
  world.event_window().Destroy();
  const QCM_HANDLE second = QCMOpenComm(u"COM5:");
  EXPECT_NE(second, 0u);
  QCMCloseComm(first);
  QCMCloseComm(second);
  EXPECT_EQ(QCMOpenComm(u"COM5:"), 0u) << "now the window is asked for again";
}

// ---- The window list

constexpr const char* kWindowList = "KORAX-HALVERN.RZM.CMemWndLst";

TEST(QCMOpenComm, MakesTheSharedWindowListOfZeros) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_EQ(host::SharedBlock(kWindowList), std::vector<std::uint8_t>(128, 0));
  QCMCloseComm(handle);
}

TEST(QCMOpenComm, MakesTheMutexOfTheWindowList) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  const auto mutexes = host::NamedMutexes();
  EXPECT_EQ(std::count_if(mutexes.begin(), mutexes.end(),
                          [](const auto& named) { return named.name == std::string(kWindowList) + "Mtx"; }),
            1);
  QCMCloseComm(handle);
}

// In a process of their own: this one has made its block long ago.

TEST(WindowListDeathTest, IsNotClearedWhenAnotherProcessHasMadeIt) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const HANDLE block = host::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 128,
                                                      u"KORAX-HALVERN.RZM.CMemWndLst");
        std::memset(host::MapViewOfFile(block, FILE_MAP_ALL_ACCESS, 0, 0, 128), 0x5A, 128);
        World world;
        std::_Exit(host::SharedBlock(kWindowList) == std::vector<std::uint8_t>(128, 0x5A) ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(WindowListDeathTest, LetsNoServiceOpenWithoutItAndIsTriedAgain) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        TestWindow window;
        host::instrument::SetEventWindow(window.handle(), kEventMessage);
        host::AttachPty("COM5:");
        const Failing fault("CreateFileMappingW");
        const bool refused = QCMOpenComm(u"COM5:") == 0;
        const bool opened = QCMOpenComm(u"COM5:") != 0;
        std::_Exit(refused && opened ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

// ---- Keys

TEST(QCMOpenComm, ReportsKeysToEveryServiceThatAsksForThem) {
  World world;
  Controller bluetooth(host::AttachPty("COMBT:"));
  const QCM_HANDLE radio = QCMOpenComm(u"COMBT:");
  const QCM_HANDLE cable = QCMOpenComm(u"COM5:");  // comes after the other when a key is delivered
  world.controller().Exchange("ST_OMD,KEY=1");
  host::instrument::KeyProcess keys;
  keys.Announce({0x0A}, qxtest::kPatience);
  EXPECT_EQ(world.controller().Receive(15), qxtest::MessageFrame("MDT,KEY=0A"));
  EXPECT_EQ(bluetooth.Exchange("ST_OMD,KEY=1"), kAck) << "no key came before";
  keys.Announce({0x0B}, qxtest::kPatience);
  EXPECT_EQ(world.controller().Receive(15), qxtest::MessageFrame("MDT,KEY=0B"));
  EXPECT_EQ(bluetooth.Receive(15), qxtest::MessageFrame("MDT,KEY=0B"));
  QCMCloseComm(radio);
  QCMCloseComm(cable);
}

TEST(QCMOpenComm, RunsOneKeyThreadBesideThreeThreadsAService) {
  World world;
  const SharedPorts shared;
  const QCM_HANDLE first = QCMOpenComm(u"COM5:");
  EXPECT_EQ(host::LibraryThreads(), 4u);
  const QCM_HANDLE second = QCMOpenComm(u"COM5:");
  EXPECT_EQ(host::LibraryThreads(), 7u);
  QCMCloseComm(first);
  EXPECT_EQ(host::LibraryThreads(), 4u);
  QCMCloseComm(second);
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

// ---- Diagnostics

TEST(Diagnostics, CountsTheCommandsThatWait) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_EQ(qxcm::QueuedCommands(), 0u);
  {
    const auto manager = qxcm::OpenServices::Instance().Find(handle);
    qxcm::Guard hold(manager->lock());  // the first command waits for it
    for (int i = 0; i < 3; ++i) world.controller().Send(qxtest::CommandFrame("GT_OMD"));
    EXPECT_TRUE(qxtest::WaitUntil([] { return qxcm::QueuedCommands() == 2; }));
  }
  world.controller().ReceiveAcks(3);
  EXPECT_EQ(qxcm::QueuedCommands(), 0u);
  QCMCloseComm(handle);
}

}  // namespace
