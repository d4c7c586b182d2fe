#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "common/kernel/named_objects.h"
#include "started_process.h"

namespace platform_test {
namespace {

void Check(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

struct Pipe {
  Pipe() { Check(pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2"); }
  std::array<int, 2> ends{};
};

Ends OpenEnds(int in, int out) { return {fdopen(in, "r"), fdopen(out, "w")}; }

// The second process finds the first one's named objects by its environment.
std::vector<std::string> Environment() {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry != nullptr; ++entry) environment.emplace_back(*entry);
  environment.push_back("QX_OBJECTS=" + host::ObjectNamespaceDirectory());
  return environment;
}

pid_t Spawn(std::string argument, int in, int out) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
  auto texts = Environment();
  std::vector<char*> environment;
  for (auto& text : texts) environment.push_back(text.data());
  environment.push_back(nullptr);
  pid_t pid = 0;
  const int error = posix_spawn(&pid, program.c_str(), &actions, nullptr, arguments.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  close(in);
  close(out);
  Check(error, "posix_spawn");
  return pid;
}

}  // namespace

StartedProcess StartProcess(const std::string& argument) {
  signal(SIGPIPE, SIG_IGN);  // telling a process that has been killed something is no reason to end
  const Pipe to, from;
  const pid_t pid = Spawn(argument, to.ends[0], from.ends[1]);
  return {pid, OpenEnds(from.ends[0], to.ends[1])};
}

Ends OwnEnds(const std::string&) { return OpenEnds(STDIN_FILENO, STDOUT_FILENO); }

// Not collected yet: the remains of a process must not count as one that lives.
void KillProcess(std::intptr_t id) {
  kill(static_cast<pid_t>(id), SIGKILL);
  siginfo_t info;
  waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOWAIT);
}

int CollectProcess(std::intptr_t id) {
  int status = 0;
  waitpid(static_cast<pid_t>(id), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace platform_test
