// How Windows starts and ends the second process, and the test program's main. The C runtime's own calls are used where
// the library's platform has one of the same name: those record a program and start none.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <process.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <map>
#include <system_error>
#include <utility>

#include "common/kernel/named_objects.h"
#include "second_process.h"

namespace platform_test {
namespace {

constexpr const char* kOption = "--second-process=";
constexpr unsigned kPipeSize = 65536;

std::map<std::string, Role::Play>& Roles() {
  static std::map<std::string, Role::Play> roles;
  return roles;
}

void Check(bool good, const char* what) {
  if (!good) throw std::system_error(errno, std::generic_category(), what);
}

class Lines final : public Conversation {
 public:
  Lines(int in, int out) : in_(_fdopen(in, "rb")), out_(_fdopen(out, "wb")) {}
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

// Neither end goes to a child; a duplicate does.
struct Pipe {
  Pipe() { Check(_pipe(ends.data(), kPipeSize, _O_BINARY | _O_NOINHERIT) == 0, "_pipe"); }
  std::array<int, 2> ends{};
};

std::wstring ThisProgram() {
  std::wstring path(32768, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// The second process finds the first one's named objects by its environment.
HANDLE Spawn(const std::string& role, int in, int out) {
  const std::array<int, 2> childs = {_dup(in), _dup(out)};
  const std::string text = kOption + role + "," + std::to_string(childs[0]) + "," + std::to_string(childs[1]);
  const std::wstring option(text.begin(), text.end());
  _putenv(("QX_OBJECTS=" + host::ObjectNamespaceDirectory()).c_str());
  const std::array<const wchar_t*, 3> arguments = {L"second_process", option.c_str(), nullptr};
  const std::intptr_t process = _wspawnv(_P_NOWAIT, ThisProgram().c_str(), arguments.data());
  for (const int end : {in, out, childs[0], childs[1]}) _close(end);
  Check(process != -1, "_wspawnv");
  return reinterpret_cast<HANDLE>(process);
}

}  // namespace

Role::Role(std::string name, Play play) : name_(std::move(name)) { Roles()[name_] = std::move(play); }

struct SecondProcess::Process {
  explicit Process(const std::string& role, Pipe to = {}, Pipe from = {})
      : lines(from.ends[0], to.ends[1]), handle(Spawn(role, to.ends[0], from.ends[1])) {}
  Lines lines;
  HANDLE handle;
};

SecondProcess::SecondProcess(const Role& role) : process_(std::make_unique<Process>(role.name())) {}

SecondProcess::~SecondProcess() {
  if (process_->handle != nullptr) Finish();
}

void SecondProcess::Tell(const std::string& line) { process_->lines.Tell(line); }

std::string SecondProcess::Listen() { return process_->lines.Listen(); }

void SecondProcess::Kill() {
  ::TerminateProcess(process_->handle, 1);
  ::WaitForSingleObjectEx(process_->handle, INFINITE, FALSE);
}

int SecondProcess::Finish() {
  process_->lines.StopTelling();
  int status = -1;
  _cwait(&status, reinterpret_cast<std::intptr_t>(std::exchange(process_->handle, nullptr)), 0);
  return status;
}

// "role,in,out": plays the role with these two ends of pipes.
int Play(const std::string& option) {
  const std::size_t in = option.find(','), out = option.rfind(',');
  Lines first(std::stoi(option.substr(in + 1)), std::stoi(option.substr(out + 1)));
  Roles().at(option.substr(0, in))(first);
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
