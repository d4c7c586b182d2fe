#include "common/disk/found_names.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "common/disk/names.h"
#include "common/disk/paths.h"
#include "common/disk/wild_cards.h"
#include "posix/disk/entries.h"
#include "posix/disk/host_names.h"

namespace host {
namespace {

struct FoundName {
  std::u16string folded;  // what it is sorted by
  std::string host_name;
};

bool operator<(const FoundName& a, const FoundName& b) {
  return std::tie(a.folded, a.host_name) < std::tie(b.folded, b.host_name);
}

class NamesInFolder final : public FoundNames {
 public:
  NamesInFolder(DiskEntry folder, std::vector<FoundName> names)
      : folder_(std::move(folder)), names_(std::move(names)) {}

  bool Next(DiskEntry* entry) override {
    if (next_ == names_.size()) return false;
    OpenEntry(folder_.descriptor.get(), std::move(names_[next_++].host_name), entry);
    return true;
  }

 private:
  const DiskEntry folder_;
  std::vector<FoundName> names_;
  std::size_t next_ = 0;
};

bool IsFileNow(const DiskEntry& folder, const std::string& host_name) {
  DiskEntry entry;
  return OpenEntry(folder.descriptor.get(), host_name, &entry) == ERROR_SUCCESS && entry.exists();
}

// Sorts, and of the names that differ in letter case alone keeps the first that is a file or folder.
void Arrange(const DiskEntry& folder, std::vector<FoundName>* names) {
  std::sort(names->begin(), names->end());
  std::vector<FoundName> kept;
  for (FoundName& name : *names) {
    const bool taken = !kept.empty() && kept.back().folded == name.folded;
    if (taken && IsFileNow(folder, kept.back().host_name)) continue;
    if (taken) kept.pop_back();
    kept.push_back(std::move(name));
  }
  *names = std::move(kept);
}

DWORD FindMatching(const DiskEntry& folder, std::u16string_view name, std::vector<FoundName>* names) {
  const NamePattern pattern(name);
  const DWORD error = ScanFolder(folder.descriptor.get(), [&](std::string_view host_name) {
    const auto own_name = FromHostName(host_name);
    if (!own_name) return;
    std::u16string folded = FoldName(*own_name);
    if (pattern.Matches(folded)) names->push_back({std::move(folded), std::string(host_name)});
  });
  Arrange(folder, names);
  return error;
}

DWORD FindOne(const DiskEntry& folder, std::u16string_view name, std::vector<FoundName>* names) {
  DiskEntry entry;
  const DWORD error = FindEntry(folder, name, &entry);
  if (error == ERROR_SUCCESS && entry.exists()) names->push_back({{}, entry.host_name});
  return error;
}

}  // namespace

DWORD FindNames(DiskEntry folder, std::u16string_view name, std::unique_ptr<FoundNames>* names) {
  std::vector<FoundName> found;
  const DWORD error = HasWildCards(name) ? FindMatching(folder, name, &found) : FindOne(folder, name, &found);
  if (error == ERROR_SUCCESS) *names = std::make_unique<NamesInFolder>(std::move(folder), std::move(found));
  return error;
}

std::u16string NameOf(const DiskEntry& entry) { return *FromHostName(entry.host_name); }

}  // namespace host
