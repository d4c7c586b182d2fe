// Which files are open in this process, and how they may be shared meanwhile.
//
// Files are told apart by what they are on this machine, not by name, so that no other spelling gets round the rules.
#ifndef QXHOST_POSIX_FILES_SHARES_H
#define QXHOST_POSIX_FILES_SHARES_H

#include <windows.h>

#include <memory>
#include <vector>

#include "posix/disk/entries.h"

namespace host {

/// One open of a file; others are measured against it until it is destroyed. Any thread.
class Share {
 public:
  Share(const FileId& file, std::vector<FileId> folders, DWORD access, DWORD share);
  Share(const Share&) = delete;
  Share& operator=(const Share&) = delete;
  ~Share();

  /// Whether both may be open at once: each lets the other do what it does.
  bool Allows(DWORD access, DWORD share) const;
  bool IsUnder(const FileId& folder) const;
  const FileId& file() const { return file_; }

 private:
  const FileId file_;
  const std::vector<FileId> folders_;  // on the way to it; none of them moves while it is open
  const DWORD access_;
  const DWORD share_;
};

/// Opens the file for GENERIC_READ and/or GENERIC_WRITE; null when an open one does not allow it. `folders`: those on
/// the way to it.
std::unique_ptr<Share> TakeShare(const FileId& file, std::vector<FileId> folders, DWORD access, DWORD share);

bool IsOpen(const FileId& file);
bool HoldsOpenFiles(const FileId& folder);

}  // namespace host

#endif
