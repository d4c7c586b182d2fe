// Paths that try to reach a folder outside the instrument's file system, and the watch over that folder.
#ifndef QXTEST_SUPPORT_PATH_SPELLINGS_H
#define QXTEST_SUPPORT_PATH_SPELLINGS_H

#include <windows.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace qxtest {

using WideText = std::basic_string<WCHAR>;

/// A folder with a secret, beside the root of the instrument's file system.
class Canary {
 public:
  /// Makes the folder "canary" in the folder that holds the root, and in the root links of every kind that lead to it.
  explicit Canary(const std::filesystem::path& root);

  /// What is in the secret file, found nowhere else.
  static constexpr const char* kSecret = "the canary's secret 9f27c1";
  /// The name of the secret file, found nowhere else.
  static constexpr const char* kSecretFile = "secret-9f27c1.txt";

  /// Everything there and beside the root: names, kinds, sizes, times, permissions and contents.
  std::map<std::string, std::string> Look() const;
  const std::filesystem::path& folder() const { return folder_; }

 private:
  void PlantLinks() const;

  std::filesystem::path root_;
  std::filesystem::path folder_;
};

/// More than 300 paths as a controller could send them, each the canary's folder or secret file or something else
/// outside, by dots, separators, devices, drives, shares, links, encodings, controls, odd units or length.
std::vector<WideText> PathSpellings(const Canary& canary);

}  // namespace qxtest

#endif
