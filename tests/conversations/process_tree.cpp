#include "conversations/process_tree.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace qxtest {
namespace {

namespace fs = std::filesystem;

std::size_t Entries(const std::string& folder) {
  std::error_code gone;
  std::size_t count = 0;
  for (fs::directory_iterator entry(folder, gone), end; !gone && entry != end; entry.increment(gone)) ++count;
  return count;
}

}  // namespace

ProcessTree CountProcessTree(pid_t process) {
  const std::string folder = "/proc/" + std::to_string(process);
  ProcessTree tree = {Entries(folder + "/task"), Entries(folder + "/fd")};
  std::error_code gone;
  for (const auto& thread : fs::directory_iterator(folder + "/task", gone)) {
    std::ifstream children(thread.path() / "children");
    for (pid_t child; children >> child;) {
      const ProcessTree below = CountProcessTree(child);
      tree.threads += below.threads;
      tree.descriptors += below.descriptors;
    }
  }
  return tree;
}

}  // namespace qxtest
