// The folder of named objects: its limits, what it tells, and what it survives.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "common/kernel/named_objects.h"
#include "common/sync/sync.h"
#include "kernel_objects.h"
#include "posix/kernel/object_namespace.h"
#include "second_process.h"

namespace platform_test {
namespace {

using Holder = host::NamedMutexState::Holder;

Holder HolderOf(const std::string& name) {
  for (const auto& mutex : host::NamedMutexes()) {
    if (mutex.name == name) return mutex.holder;
  }
  throw std::out_of_range(name);
}

TEST(NamedMutexes, TellsWhoHoldsThem) {
  const Handle mutex = FreeMutex(TEXT("QX-TEST.held"));
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kFree);
  Wait(mutex);
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kLibrary);
  ReleaseMutex(mutex);
  host::WaitForSingleObject(mutex, INFINITE);
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kOther) << "taken outside the library's calls";
  ReleaseMutex(mutex);
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kFree);
}

TEST(NamedMutexes, ListsOnlyMutexesThatSomebodyHasOpen) {
  const Handle event = ManualEvent(TEXT("QX-TEST.event"));
  FreeMutex(TEXT("QX-TEST.closed")).Close();
  const Handle mutex = FreeMutex(TEXT("QX-TEST.open"));
  const auto mutexes = host::NamedMutexes();
  ASSERT_EQ(mutexes.size(), 1u);
  EXPECT_EQ(mutexes[0].name, "QX-TEST.open");
}

const Role holds_mutex("holds_mutex", [](Conversation& first) {
  const Handle mutex = OwnedMutex(TEXT("QX-TEST.held"));
  first.Tell("held");
  first.Listen();
});

TEST(NamedMutexes, OneHeldByAnotherProcessIsFreeWhenThatIsKilled) {
  SecondProcess other(holds_mutex);
  ASSERT_EQ(other.Listen(), "held");
  const Handle mutex = FreeMutex(TEXT("QX-TEST.held"));
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kOther);
  other.Kill();
  EXPECT_EQ(HolderOf("QX-TEST.held"), Holder::kFree);
}

TEST(SharedBlock, CopiesTheBytesOfANamedBlock) {
  EXPECT_FALSE(host::SharedBlock("QX-TEST.copy"));
  const Handle block = Block(TEXT("QX-TEST.copy"), 4);
  auto* view = static_cast<std::uint8_t*>(MapViewOfFile(block, FILE_MAP_WRITE, 0, 0, 0));
  view[3] = 9;
  EXPECT_EQ(host::SharedBlock("QX-TEST.copy"), (std::vector<std::uint8_t>{0, 0, 0, 9}));
  UnmapViewOfFile(view);
}

TEST(NamedObjects, NameMayHaveSixtyFourUnits) {
  const std::u16string longest(64, u'n');
  EXPECT_NE(ManualEvent(longest.c_str()), nullptr);
  EXPECT_EQ(ManualEvent((longest + u'n').c_str()), nullptr);
  EXPECT_EQ(GetLastError(), 206u);
}

TEST(NamedObjects, ThereIsRoomForSixtyFour) {
  std::vector<Handle> events;
  for (int i = 0; i < 64; ++i) {
    const std::string name = "QX-TEST.many." + std::to_string(i);
    events.push_back(ManualEvent(std::u16string(name.begin(), name.end()).c_str()));
    ASSERT_NE(events.back(), nullptr);
  }
  EXPECT_EQ(FreeMutex(u"QX-TEST.more"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
  events.pop_back();
  EXPECT_NE(FreeMutex(u"QX-TEST.more"), nullptr);
}

TEST(NamedObjects, BlockHasFourKibibytesAtMost) {
  EXPECT_NE(Block(u"QX-TEST.block", 4096), nullptr);
  EXPECT_EQ(Block(u"QX-TEST.block", 4097), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
}

TEST(NamedObjects, FileBackedBlocksAreNotOffered) {
  const Handle event = ManualEvent();
  EXPECT_EQ(CreateFileMappingW(event, nullptr, PAGE_READWRITE, 0, 64, nullptr), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST(NamedObjects, FolderStaysWhileObjectsAreOpen) {
  const Handle event = ManualEvent(u"QX-TEST.open");
  const std::string folder = host::ObjectNamespaceDirectory();
  EXPECT_THROW(host::SetObjectNamespace(folder + ".other"), std::logic_error);
  EXPECT_EQ(host::ObjectNamespaceDirectory(), folder);
}

TEST(NamedObjects, FoldersKeepTheirObjectsApart) {
  const std::string folder = host::ObjectNamespaceDirectory();
  const std::string other = folder + "/other";
  host::SetObjectNamespace(other);
  EXPECT_EQ(getenv("QX_OBJECTS"), other);
  EXPECT_EQ(std::filesystem::status(other).permissions(), std::filesystem::perms::owner_all);
  host::SetObjectNamespace(folder);
}

TEST(NamedObjects, FolderThatCannotBeMadeIsRefused) {
  EXPECT_THROW(host::SetObjectNamespace("/proc/none/objects"), std::system_error);
}

TEST(NamedObjects, FileOfAnotherFormatIsRefused) {
  const std::string folder = host::ObjectNamespaceDirectory() + "/foreign";
  std::filesystem::create_directory(folder);
  std::ofstream(folder + "/objects") << "something else";
  EXPECT_THROW(host::SetObjectNamespace(folder), std::system_error);
}

const Role has_a_private_folder("has_a_private_folder", [](Conversation& first) {
  unsetenv("QX_OBJECTS");
  first.Tell(host::ObjectNamespaceDirectory());
  first.Listen();
});

TEST(NamedObjects, PrivateFolderGoesWithItsProcess) {
  SecondProcess other(has_a_private_folder);
  const std::string folder = other.Listen();
  EXPECT_TRUE(std::filesystem::exists(folder + "/objects"));
  EXPECT_EQ(other.Finish(), 0);
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(NamedObjects, PrivateFolderOfAKilledProcessIsRemovedByTheNextProcess) {
  SecondProcess killed(has_a_private_folder);
  const std::string folder = killed.Listen();
  killed.Kill();
  EXPECT_TRUE(std::filesystem::exists(folder + "/objects"));
  SecondProcess next(has_a_private_folder);
  EXPECT_NE(next.Listen(), folder);
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_TRUE(std::filesystem::exists(host::ObjectNamespaceDirectory())) << "this process lives";
}

// Killed at the worst moment: half-way through a change, with the lock of all processes in its hands.
const Role dies_in_a_change("dies_in_a_change", [](Conversation& first) {
  const auto space = host::ObjectNamespace::Current();
  host::KernelLock lock;
  const host::NamespaceLock space_lock(lock, *space);
  host::ObjectSlot* slot = space->FreeSlot();
  slot->kind = host::ObjectKind::kMutex;
  first.Tell("changing");
  kill(getpid(), SIGKILL);
});

TEST(NamedObjects, ProcessKilledInAChangeHoldsUpNobody) {
  const Handle event = AutoEvent(u"QX-TEST.event");
  SecondProcess other(dies_in_a_change);
  ASSERT_EQ(other.Listen(), "changing");
  Set(event);
  EXPECT_TRUE(IsSet(event));
  EXPECT_TRUE(host::NamedMutexes().empty());
}

}  // namespace
}  // namespace platform_test
