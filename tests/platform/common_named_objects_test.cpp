// What every host tells of named objects, and what keeps those of two instruments apart.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/kernel/named_objects.h"
#include "common/sync/sync.h"
#include "kernel_objects.h"
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

TEST(NamedObjects, BlockHasFourKibibytesAtMost) {
  EXPECT_NE(Block(TEXT("QX-TEST.block"), 4096), nullptr);
  EXPECT_EQ(Block(TEXT("QX-TEST.block"), 4097), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
}

TEST(NamedObjects, FileBackedBlocksAreNotOffered) {
  const Handle event = ManualEvent();
  EXPECT_EQ(CreateFileMappingW(event, nullptr, PAGE_READWRITE, 0, 64, nullptr), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_SUPPORTED));
}

TEST(NamedObjects, FolderStaysWhileObjectsAreOpen) {
  const Handle event = ManualEvent(TEXT("QX-TEST.open"));
  const std::string folder = host::ObjectNamespaceDirectory();
  EXPECT_THROW(host::SetObjectNamespace(folder + ".other"), std::logic_error);
  EXPECT_EQ(host::ObjectNamespaceDirectory(), folder);
}

TEST(NamedObjects, ObjectsOfAnotherFolderAreOthers) {
  const std::string folder = host::ObjectNamespaceDirectory();
  const std::string other = (std::filesystem::temp_directory_path() / "qx-objects-of-another").string();
  SecondProcess first(holds_mutex);
  ASSERT_EQ(first.Listen(), "held");
  host::SetObjectNamespace(other);
  EXPECT_EQ(host::ObjectNamespaceDirectory(), other);
  EXPECT_EQ(std::getenv("QX_OBJECTS"), other);
  OwnedMutex(TEXT("QX-TEST.held")).Close();
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
  host::SetObjectNamespace(folder);
  FreeMutex(TEXT("QX-TEST.held")).Close();
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
  std::filesystem::remove_all(other);
}

}  // namespace
}  // namespace platform_test
