// What the tests of the root's borders share: a canary outside, and every call that could reach it.
#ifndef QXTEST_PLATFORM_CONTAINED_FILES_H
#define QXTEST_PLATFORM_CONTAINED_FILES_H

#include <filesystem>
#include <string>

#include "scratch_folder.h"
#include "support/path_spellings.h"

namespace platform_test {

namespace fs = std::filesystem;
using qxtest::Canary;

class ContainedFiles : public FileCalls {
 protected:
  ContainedFiles() : root_(fs::u8path(folder_.host_path()).parent_path()) {}

  /// Whether what was read or listed comes from the canary.
  static bool Tells(const std::string& seen);
  /// What is behind a handle, closed afterwards.
  static std::string TakeContent(HANDLE file);
  static HANDLE OpenPath(const WideString& path, DWORD access, DWORD disposition);
  /// The names that the pattern finds, each in brackets.
  static std::string Listed(const WideString& pattern);
  /// Makes every call that takes a path; returns what could be read by it.
  std::string TryAll(const WideString& path) const;

  const fs::path root_;
};

}  // namespace platform_test

#endif
