#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include "common/kernel/named_objects.h"
#include "second_process.h"

namespace platform_test {
namespace {

constexpr const char* kOption = "--second-process=";

std::map<std::string, Role::Play>& Roles() {
  static std::map<std::string, Role::Play> roles;
  return roles;
}

void Check(int error, const char* what) {
  if (error != 0) throw std::system_error(error, std::generic_category(), what);
}

class Lines final : public Conversation {
 public:
  Lines(int in, int out) : in_(fdopen(in, "r")), out_(fdopen(out, "w")) {}
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;
  ~Lines() override {
    StopTelling();
    fclose(in_);
  }
  void Tell(const std::string& line) override {
    fputs((line + "\n").c_str(), out_);
    fflush(out_);
  }
  std::string Listen() override {
    std::string line;
    for (int c = getc(in_); c != EOF && c != '\n'; c = getc(in_)) line.push_back(static_cast<char>(c));
    return line;
  }
  void StopTelling() {
    if (out_ != nullptr) fclose(std::exchange(out_, nullptr));
  }

 private:
  FILE* in_;
  FILE* out_;
};

struct Pipe {
  Pipe() { Check(pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2"); }
  std::array<int, 2> ends{};
};

// The second process finds the first one's named objects by its environment.
std::vector<std::string> Environment() {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry != nullptr; ++entry) environment.emplace_back(*entry);
  environment.push_back("QX_OBJECTS=" + host::ObjectNamespaceDirectory());
  return environment;
}

pid_t Spawn(const std::string& role, int in, int out) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  std::string option = kOption + role;
  std::array<char*, 3> arguments = {program.data(), option.data(), nullptr};
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

Role::Role(std::string name, Play play) : name_(std::move(name)) { Roles()[name_] = std::move(play); }

struct SecondProcess::Process {
  explicit Process(const std::string& role, Pipe to = {}, Pipe from = {})
      : lines(from.ends[0], to.ends[1]), pid(Spawn(role, to.ends[0], from.ends[1])) {}
  Lines lines;
  pid_t pid;
};

SecondProcess::SecondProcess(const Role& role) : process_(std::make_unique<Process>(role.name())) {}

SecondProcess::~SecondProcess() {
  if (process_->pid != 0) Finish();
}

void SecondProcess::Tell(const std::string& line) { process_->lines.Tell(line); }

std::string SecondProcess::Listen() { return process_->lines.Listen(); }

// Not collected yet: the remains of a process must not count as one that lives.
void SecondProcess::Kill() {
  kill(process_->pid, SIGKILL);
  siginfo_t info;
  waitid(P_PID, static_cast<id_t>(process_->pid), &info, WEXITED | WNOWAIT);
}

int SecondProcess::Finish() {
  process_->lines.StopTelling();
  int status = 0;
  waitpid(std::exchange(process_->pid, 0), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace platform_test

int main(int argc, char** argv) {
  signal(SIGPIPE, SIG_IGN);  // telling a process that has been killed something is no reason to end
  const std::string option = argc > 1 ? argv[1] : "";
  if (option.rfind(platform_test::kOption, 0) == 0) {
    platform_test::Lines first(STDIN_FILENO, STDOUT_FILENO);
    platform_test::Roles().at(option.substr(std::string(platform_test::kOption).size()))(first);
    return 0;
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
