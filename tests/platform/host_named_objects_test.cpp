// The folder of named objects on this host: its limits and what it survives.
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
