// Files of this machine that the simulator itself keeps and writes.
#ifndef QXSIM_SYSTEM_FILES_H
#define QXSIM_SYSTEM_FILES_H

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace qxsim {

/// A file that is replaced as a whole: written beside the old one, forced to the disk, then put in its place. Killed at
/// any moment, the program leaves the old content or the new one. For one user at a time.
class KeptFile {
 public:
  /// What a program that was killed while it wrote has left behind goes. Throws StartError.
  explicit KeptFile(std::filesystem::path file);

  const std::filesystem::path& path() const { return file_; }

  /// All of it; nothing when there is no file. Throws StartError.
  std::optional<std::string> Read() const;

  /// 0 when the text is on the disk; else errno (ENOSPC when disk or quota are full) with the file as it was.
  int Replace(const std::string& text) const;

 private:
  const std::filesystem::path file_;
  const std::filesystem::path new_file_;  // the next content, while it is written
};

/// Empties or makes the file, for text whose lines end in "\n". Null with errno set when it cannot be written.
std::FILE* OpenTextFile(const std::filesystem::path& file);

}  // namespace qxsim

#endif
