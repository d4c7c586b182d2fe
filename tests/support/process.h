// Runs a program of the project as a user does, and waits for what it says and how it ends.
#ifndef QXTEST_SUPPORT_PROCESS_H
#define QXTEST_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace qxtest {

/// A running program; killed when the object goes. Its standard input is empty.
class Process {
 public:
  /// Starts `arguments[0]` (a path), in `folder` unless that is empty, with these variables set ("NAME=value") on top
  /// of the environment. Throws std::system_error.
  explicit Process(const std::vector<std::string>& arguments, const std::string& folder = {},
                   const std::vector<std::string>& variables = {});
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;
  ~Process();

  pid_t id() const { return id_; }

  /// The next line of standard output, without its end; nothing when the output has ended or the time is over.
  std::optional<std::string> ReadLine(std::chrono::milliseconds time);
  /// The rest of standard output, up to its end or until the time is over.
  std::string ReadAll(std::chrono::milliseconds time);
  /// What it has written to standard error so far.
  std::string ErrorText() const;

  void Signal(int signal) const;
  /// The exit status, 128 + the signal that ended it, or nothing when the time is over first.
  std::optional<int> Wait(std::chrono::milliseconds time);

 private:
  bool FillFor(std::chrono::steady_clock::time_point deadline);

  pid_t id_ = -1;
  int output_ = -1;
  int errors_ = -1;
  std::string pending_;
  std::optional<int> status_;
};

struct Outcome {
  int status = -1;  ///< -1: it did not end in time
  std::string output;
  std::string errors;
};

/// Runs the program to its end.
Outcome RunToEnd(const std::vector<std::string>& arguments, const std::string& folder = {},
                 std::chrono::milliseconds time = std::chrono::seconds(30));

/// The path of one of the project's programs.
std::string Program(const std::string& name);

/// A folder of its own for a test, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace qxtest

#endif
