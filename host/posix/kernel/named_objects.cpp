#include "common/kernel/named_objects.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "common/text/utf.h"
#include "posix/kernel/object_namespace.h"
#include "posix/kernel/processes.h"

namespace host {
namespace {

constexpr const char* kVariable = "QX_OBJECTS";
constexpr const char* kPrivateName = "qx-objects-%u";  // of the process that made the folder

struct Current {
  std::mutex mutex;
  std::shared_ptr<ObjectNamespace> space;  // guarded by mutex
};

Current& TheCurrent() {
  static auto* current = new Current;  // threads may outlive the end of main
  return *current;
}

// Folders of processes that were killed before they could remove them.
void RemoveLeftFolders(const std::filesystem::path& temporary) {
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(temporary, ignored)) {
    unsigned maker = 0;
    if (std::sscanf(entry.path().filename().c_str(), kPrivateName, &maker) != 1) continue;
    if (!ProcessStart(maker)) std::filesystem::remove_all(entry.path(), ignored);
  }
}

// Removed by this process only: a forked child exits with the same list of things to do.
std::string MakePrivateFolder() {
  static const pid_t maker = getpid();
  static std::string folder;
  const auto temporary = std::filesystem::temp_directory_path();
  RemoveLeftFolders(temporary);
  char name[64];
  std::snprintf(name, sizeof name, kPrivateName, static_cast<unsigned>(maker));
  folder = (temporary / name).string() + "-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) throw std::system_error(errno, std::generic_category(), folder);
  std::atexit([] {
    std::error_code ignored;
    if (getpid() == maker) std::filesystem::remove_all(folder, ignored);
  });
  return folder;
}

NamedMutexState::Holder HolderOf(const MutexState& mutex, const ObjectNamespace& space) {
  if (mutex.count == 0) return NamedMutexState::Holder::kFree;
  const bool librarys = mutex.process == space.process() && mutex.in_library_call;
  return librarys ? NamedMutexState::Holder::kLibrary : NamedMutexState::Holder::kOther;
}

}  // namespace

std::shared_ptr<ObjectNamespace> ObjectNamespace::Current() {
  auto& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  if (current.space == nullptr) {
    const char* directory = std::getenv(kVariable);
    const bool given = directory != nullptr && *directory != 0;
    current.space = std::make_shared<ObjectNamespace>(given ? directory : MakePrivateFolder());
  }
  return current.space;
}

void SetObjectNamespace(std::string directory) {
  directory = std::filesystem::absolute(directory).string();
  auto& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  if (current.space != nullptr && current.space->directory() == directory) return;
  if (current.space != nullptr) {
    KernelLock kernel_lock;
    NamespaceLock space_lock(kernel_lock, *current.space);
    if (current.space->holds_any()) throw std::logic_error("named objects are open in " + current.space->directory());
  }
  current.space = std::make_shared<ObjectNamespace>(std::move(directory));
  setenv(kVariable, current.space->directory().c_str(), 1);
}

std::string ObjectNamespaceDirectory() { return ObjectNamespace::Current()->directory(); }

std::vector<NamedMutexState> NamedMutexes() {
  const auto space = ObjectNamespace::Current();
  std::vector<NamedMutexState> states;
  KernelLock kernel_lock;
  NamespaceLock space_lock(kernel_lock, *space);
  space->Sweep();
  for (const ObjectSlot& slot : space->file().slots) {
    if (slot.openers == 0 || slot.kind != ObjectKind::kMutex) continue;
    states.push_back({WideToUtf8({slot.name, slot.name_length}), HolderOf(slot.mutex, *space)});
  }
  return states;
}

std::optional<std::vector<std::uint8_t>> SharedBlock(std::string_view name) {
  const auto space = ObjectNamespace::Current();
  KernelLock kernel_lock;
  NamespaceLock space_lock(kernel_lock, *space);
  const ObjectSlot* slot = space->Find(Utf8ToWide(name));
  if (slot == nullptr || slot->kind != ObjectKind::kBlock) return std::nullopt;
  return std::vector<std::uint8_t>(slot->block, slot->block + slot->block_size);
}

}  // namespace host
