#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

namespace qxtest {
namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

/// What the child does between fork and exec: async-signal-safe calls only.
[[noreturn]] void Become(char* const* arguments, char* const* environment, const char* folder, int output, int errors) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  signal(SIGHUP, SIG_DFL);  // whoever runs the tests may have it ignored
  const int input = open("/dev/null", O_RDONLY);
  const bool ready = input >= 0 && dup2(input, 0) == 0 && dup2(output, 1) == 1 && dup2(errors, 2) == 2 &&
                     (*folder == '\0' || chdir(folder) == 0);
  if (ready) execve(arguments[0], arguments, environment);
  _exit(127);
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> Environment(const std::vector<std::string>& variables) {
  std::vector<std::string> environment = variables;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    const std::string name = text.substr(0, text.find('=') + 1);
    bool replaced = false;
    for (const std::string& variable : variables) replaced |= variable.compare(0, name.size(), name) == 0;
    if (!replaced) environment.push_back(text);
  }
  return environment;
}

int MillisecondsUntil(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return left < 0 ? 0 : static_cast<int>(left) + 1;
}

}  // namespace

Process::Process(const std::vector<std::string>& arguments, const std::string& folder,
                 const std::vector<std::string>& variables) {
  std::vector<std::string> argument_texts = arguments;
  std::vector<std::string> environment_texts = Environment(variables);
  const std::vector<char*> argument_pointers = Pointers(argument_texts);
  const std::vector<char*> environment_pointers = Pointers(environment_texts);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) Fail("pipe");
  errors_ = memfd_create("stderr", MFD_CLOEXEC);
  if (errors_ < 0) Fail("memfd_create");
  id_ = fork();
  if (id_ < 0) Fail("fork");
  if (id_ == 0) Become(argument_pointers.data(), environment_pointers.data(), folder.c_str(), ends[1], errors_);
  close(ends[1]);
  output_ = ends[0];
}

Process::~Process() {
  if (!status_) {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  close(output_);
  close(errors_);
}

bool Process::FillFor(Clock::time_point deadline) {
  pollfd ready = {output_, POLLIN, 0};
  if (poll(&ready, 1, MillisecondsUntil(deadline)) <= 0) return false;
  char bytes[4096];
  const ssize_t count = read(output_, bytes, sizeof bytes);
  if (count <= 0) return false;
  pending_.append(bytes, static_cast<std::size_t>(count));
  return true;
}

std::optional<std::string> Process::ReadLine(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  std::size_t end;
  while ((end = pending_.find('\n')) == std::string::npos) {
    if (!FillFor(deadline)) return std::nullopt;
  }
  const std::string line = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  return line;
}

std::string Process::ReadAll(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  while (FillFor(deadline)) {
  }
  return std::exchange(pending_, {});
}

std::string Process::ErrorText() const {
  std::string text;
  char bytes[4096];
  ssize_t count;
  while ((count = pread(errors_, bytes, sizeof bytes, static_cast<off_t>(text.size()))) > 0) {
    text.append(bytes, static_cast<std::size_t>(count));
  }
  return text;
}

void Process::Signal(int signal) const { kill(id_, signal); }

std::optional<int> Process::Wait(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  while (!status_) {
    int status = 0;
    if (waitpid(id_, &status, WNOHANG) == id_) {
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    } else if (Clock::now() >= deadline) {
      return std::nullopt;
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  return status_;
}

Outcome RunToEnd(const std::vector<std::string>& arguments, const std::string& folder, std::chrono::milliseconds time) {
  Process process(arguments, folder);
  const std::string output = process.ReadAll(time);
  const int status = process.Wait(time).value_or(-1);
  return {status, output, process.ErrorText()};
}

std::string Program(const std::string& name) { return QX_BIN_DIR "/" + name; }

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "qxtest-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) Fail("mkdtemp");
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace qxtest
