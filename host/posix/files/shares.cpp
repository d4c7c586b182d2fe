#include "posix/files/shares.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

namespace host {
namespace {

struct ShareTable {
  std::mutex mutex;
  std::multimap<FileId, const Share*> open;  // guarded by mutex
};

ShareTable& TheShares() {
  static auto* table = new ShareTable;  // files may still be closed while the process ends
  return *table;
}

// Whether an open with this share mode lets another one have this access.
bool Lets(DWORD share, DWORD access) {
  const bool reading = (access & GENERIC_READ) == 0 || (share & FILE_SHARE_READ) != 0;
  const bool writing = (access & GENERIC_WRITE) == 0 || (share & FILE_SHARE_WRITE) != 0;
  return reading && writing;
}

bool AllAllow(const FileId& file, DWORD access, DWORD share) {
  ShareTable& table = TheShares();
  const std::lock_guard<std::mutex> lock(table.mutex);
  const auto [first, last] = table.open.equal_range(file);
  return std::all_of(first, last, [&](const auto& open) { return open.second->Allows(access, share); });
}

}  // namespace

Share::Share(const FileId& file, std::vector<FileId> folders, DWORD access, DWORD share)
    : file_(file), folders_(std::move(folders)), access_(access), share_(share) {
  ShareTable& table = TheShares();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.open.emplace(file_, this);
}

Share::~Share() {
  ShareTable& table = TheShares();
  const std::lock_guard<std::mutex> lock(table.mutex);
  auto [open, last] = table.open.equal_range(file_);
  while (open != last && open->second != this) ++open;
  table.open.erase(open);
}

bool Share::Allows(DWORD access, DWORD share) const { return Lets(share_, access) && Lets(share, access_); }

bool Share::IsUnder(const FileId& folder) const {
  return std::find(folders_.begin(), folders_.end(), folder) != folders_.end();
}

// Opens are made with the lock of names held, so none comes between the look and the entry.
std::unique_ptr<Share> TakeShare(const FileId& file, std::vector<FileId> folders, DWORD access, DWORD share) {
  if (!AllAllow(file, access, share)) return nullptr;
  return std::make_unique<Share>(file, std::move(folders), access, share);
}

bool IsOpen(const FileId& file) {
  ShareTable& table = TheShares();
  const std::lock_guard<std::mutex> lock(table.mutex);
  return table.open.count(file) != 0;
}

bool HoldsOpenFiles(const FileId& folder) {
  ShareTable& table = TheShares();
  const std::lock_guard<std::mutex> lock(table.mutex);
  return std::any_of(table.open.begin(), table.open.end(),
                     [&](const auto& open) { return open.second->IsUnder(folder); });
}

}  // namespace host
