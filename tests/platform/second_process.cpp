// Roles, the lines of text between the two processes, and the test program's main.
#include "second_process.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "started_process.h"

namespace platform_test {
namespace {

constexpr const char* kOption = "--second-process=";

std::map<std::string, Role::Play>& Roles() {
  static std::map<std::string, Role::Play> roles;
  return roles;
}

class Lines final : public Conversation {
 public:
  explicit Lines(Ends ends) : ends_(ends) {}
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;
  ~Lines() override {
    StopTelling();
    fclose(ends_.in);
  }
  void Tell(const std::string& line) override {
    fputs((line + "\n").c_str(), ends_.out);
    fflush(ends_.out);
  }
  std::string Listen() override {
    std::string line;
    for (int c = getc(ends_.in); c != EOF && c != '\n'; c = getc(ends_.in)) line.push_back(static_cast<char>(c));
    return line;
  }
  void StopTelling() {
    if (ends_.out != nullptr) fclose(std::exchange(ends_.out, nullptr));
  }

 private:
  Ends ends_;
};

}  // namespace

Role::Role(std::string name, Play play) : name_(std::move(name)) { Roles()[name_] = std::move(play); }

struct SecondProcess::Process {
  explicit Process(const std::string& role) : Process(StartProcess(kOption + role)) {}
  explicit Process(const StartedProcess& started) : lines(started.ends), id(started.id) {}
  Lines lines;
  std::intptr_t id;
  bool finished = false;
};

SecondProcess::SecondProcess(const Role& role) : process_(std::make_unique<Process>(role.name())) {}

SecondProcess::~SecondProcess() {
  if (!process_->finished) Finish();
}

void SecondProcess::Tell(const std::string& line) { process_->lines.Tell(line); }

std::string SecondProcess::Listen() { return process_->lines.Listen(); }

void SecondProcess::Kill() { KillProcess(process_->id); }

int SecondProcess::Finish() {
  process_->lines.StopTelling();
  process_->finished = true;
  return CollectProcess(process_->id);
}

// "role" or "role,more", where the rest is the host's.
int Play(const std::string& option) {
  const std::size_t end = option.find(',');
  Lines first(OwnEnds(end == std::string::npos ? "" : option.substr(end + 1)));
  Roles().at(option.substr(0, end))(first);
  return 0;
}

}  // namespace platform_test

int main(int argc, char** argv) {
  const std::string option = argc > 1 ? argv[1] : "";
  const std::string second = platform_test::kOption;
  if (option.rfind(second, 0) == 0) return platform_test::Play(option.substr(second.size()));
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
