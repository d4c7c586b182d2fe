// The names of one instrument's objects hold a mark made of its folder's path: the folder itself holds nothing.
#include "common/kernel/named_objects.h"

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <system_error>

#include "common/kernel/shared_memory.h"
#include "common/text/utf.h"
#include "windows/kernel/named_mutexes.h"
#include "windows/kernel/object_names.h"
#include "windows/kernel/real_handles.h"

namespace host {
namespace {

constexpr const char* kVariable = "QX_OBJECTS";

struct Current {
  std::mutex mutex;
  std::string folder;  // guarded by mutex; empty until it is first asked for
};

Current& TheCurrent() {
  static auto* current = new Current;  // threads may outlive the end of main
  return *current;
}

// No other process has this name unless it is told.
std::string PrivateFolder() {
  LARGE_INTEGER now = {};
  ::QueryPerformanceCounter(&now);
  const std::string own = std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(now.QuadPart);
  return (std::filesystem::temp_directory_path() / ("qx-objects-" + own)).string();
}

const std::string& FolderOf(Current& current) {
  if (!current.folder.empty()) return current.folder;
  const char* given = std::getenv(kVariable);
  current.folder = given != nullptr && *given != 0 ? given : PrivateFolder();
  return current.folder;
}

// Short, since the system limits a name's length; letter case and kind of separator make no other folder.
std::uint64_t MarkOf(const std::string& folder) {
  std::uint64_t mark = 0xCBF29CE484222325;
  for (const char c : folder) {
    const char folded = c == '/' ? '\\' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    mark = (mark ^ static_cast<unsigned char>(folded)) * 0x100000001B3;
  }
  return mark;
}

}  // namespace

WideString SystemName(LPCWSTR name) {
  if (name == nullptr || *name == 0) return {};
  return Utf8ToWide("QX-" + std::to_string(MarkOf(ObjectNamespaceDirectory())) + "-") + name;
}

void SetObjectNamespace(std::string directory) {
  directory = std::filesystem::absolute(directory).string();
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  if (current.folder == directory) return;
  if (NamedHandles() != 0) throw std::logic_error("named objects are open in " + current.folder);
  std::filesystem::create_directories(directory);
  current.folder = std::move(directory);
  _putenv_s(kVariable, current.folder.c_str());
}

std::string ObjectNamespaceDirectory() {
  Current& current = TheCurrent();
  const std::lock_guard<std::mutex> lock(current.mutex);
  return FolderOf(current);
}

std::vector<NamedMutexState> NamedMutexes() { return NotedMutexes(); }

}  // namespace host
