// A file on the instrument with these bytes, for as long as the object lives.
#ifndef QXTEST_PLATFORM_MODULE_FILE_H
#define QXTEST_PLATFORM_MODULE_FILE_H

#include <windows.h>

#include "scratch_folder.h"
#include "support/pe_file.h"

namespace platform_test {

class ModuleFile {
 public:
  explicit ModuleFile(const qxtest::FileBytes& bytes);
  ModuleFile(const ModuleFile&) = delete;
  ModuleFile& operator=(const ModuleFile&) = delete;

  LPCWSTR path() const { return path_.c_str(); }

 private:
  ScratchFolder folder_;
  WideString path_;
};

}  // namespace platform_test

#endif
