// The version resource of a program or library file on the controller.
#ifndef QXCM_COMMANDS_SERVICES_MODULE_VERSION_H
#define QXCM_COMMANDS_SERVICES_MODULE_VERSION_H

#include <cstddef>
#include <vector>

#include "platform/text.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Holds one file's resource in its first translation. One thread at a time.
class ModuleVersionInfo {
 public:
  /// Reads a file's resource in place of the one before. False, with nothing loaded: no such file, or no resource.
  bool Load(LPCWSTR path);

  /// Reads a value as dotted text: every "," becomes ".", blanks go. False, with an empty result: nothing is loaded, or
  /// the resource has no such value in its first translation.
  bool Query(const WideText& name, WideText* result) const;
  bool FileVersion(WideText* result) const { return Query(TEXT("FileVersion"), result); }
  bool ProductVersion(WideText* result) const { return Query(TEXT("ProductVersion"), result); }

 private:
  std::vector<std::byte> resource_;
  WideText prefix_;  // of the names in the first translation's table; empty: there is no table
};

}  // namespace qxcm

#endif
