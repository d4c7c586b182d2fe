// What tests of the instrument's files share: names and facts as the machine has them.
#ifndef QXTEST_PLATFORM_INSTRUMENT_FILES_H
#define QXTEST_PLATFORM_INSTRUMENT_FILES_H

#include <filesystem>
#include <fstream>

#include "common/files/file_facts.h"
#include "scratch_folder.h"

namespace platform_test {

namespace fs = std::filesystem;
using Names = std::vector<WideString>;

class InstrumentFiles : public FileCalls {
 protected:
  fs::path HostPath(const std::string& name) const { return fs::u8path(folder_.host_path()) / fs::u8path(name); }
  void MakeHostFile(const std::string& name, const std::string& text = "") const {
    std::ofstream file(HostPath(name), std::ios::binary);
    file << text;
    ASSERT_TRUE(file.good());
  }
  Names All() const { return SearchNames(Path(TEXT("*"))); }
  DWORD Change(const WideString& name, const host::FileChange& change) const {
    return host::ChangeInstrumentFile(Path(name), change);
  }
  static host::FileChange ReadOnly(bool on) {
    host::FileChange change;
    change.readonly = on;
    return change;
  }
};

}  // namespace platform_test

#endif
