// The names that a search has found. How a folder is read is the host's.
#ifndef QXHOST_COMMON_DISK_FOUND_NAMES_H
#define QXHOST_COMMON_DISK_FOUND_NAMES_H

#include <windows.h>

#include <memory>

#include "common/disk/places.h"

namespace host {

class FoundNames {
 public:
  virtual ~FoundNames() = default;

  /// Looks what has the next name now: an entry that does not exist when nothing has. False when there is no further
  /// name.
  virtual bool Next(DiskEntry* entry) = 0;
};

/// Reads the names in the folder that match the last name of a pattern, in the order of their upper-case names. With
/// the lock of names held. Returns 0 or the error.
DWORD FindNames(DiskEntry folder, WideView name, std::unique_ptr<FoundNames>* names);

/// How the instrument spells the name of what was found.
WideString NameOf(const DiskEntry& entry);

}  // namespace host

#endif
