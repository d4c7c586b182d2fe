#include "windows/files/open_paths.h"

#include <mutex>
#include <set>

namespace host {
namespace {

struct OpenPaths {
  std::mutex mutex;
  std::multiset<WideString> paths;  // as the system spells them; guarded by mutex
};

OpenPaths& All() {
  static auto* paths = new OpenPaths;  // files may still be closed while the process ends
  return *paths;
}

}  // namespace

OpenPath::OpenPath(WideString path) : path_(std::move(path)) {
  OpenPaths& all = All();
  const std::lock_guard<std::mutex> lock(all.mutex);
  all.paths.insert(path_);
}

OpenPath::~OpenPath() {
  OpenPaths& all = All();
  const std::lock_guard<std::mutex> lock(all.mutex);
  all.paths.erase(all.paths.find(path_));
}

bool HoldsOpenFiles(const WideString& folder) {
  const WideString below = folder + TEXT('\\');
  OpenPaths& all = All();
  const std::lock_guard<std::mutex> lock(all.mutex);
  const auto first = all.paths.lower_bound(below);
  return first != all.paths.end() && first->compare(0, below.size(), below) == 0;
}

}  // namespace host
