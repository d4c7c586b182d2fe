// The C runtime's own calls are used where the library's platform has one of the same name: those record a program and
// start none.
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <windows.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "common/kernel/named_objects.h"
#include "started_process.h"

namespace platform_test {
namespace {

constexpr unsigned kPipeSize = 65536;

void Check(bool good, const char* what) {
  if (!good) throw std::system_error(errno, std::generic_category(), what);
}

// Neither end goes to a child; a duplicate does.
struct Pipe {
  Pipe() { Check(_pipe(ends.data(), kPipeSize, _O_BINARY | _O_NOINHERIT) == 0, "_pipe"); }
  std::array<int, 2> ends{};
};

Ends OpenEnds(int in, int out) { return {_fdopen(in, "rb"), _fdopen(out, "wb")}; }

std::wstring ThisProgram() {
  std::wstring path(32768, L'\0');
  path.resize(::GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// The second process finds the first one's named objects by its environment.
std::intptr_t Spawn(const std::string& argument, int in, int out) {
  const std::array<int, 2> childs = {_dup(in), _dup(out)};
  const std::string text = argument + "," + std::to_string(childs[0]) + "," + std::to_string(childs[1]);
  const std::wstring option(text.begin(), text.end());
  _putenv(("QX_OBJECTS=" + host::ObjectNamespaceDirectory()).c_str());
  const std::array<const wchar_t*, 3> arguments = {L"second_process", option.c_str(), nullptr};
  const std::intptr_t process = _wspawnv(_P_NOWAIT, ThisProgram().c_str(), arguments.data());
  for (const int end : {in, out, childs[0], childs[1]}) _close(end);
  Check(process != -1, "_wspawnv");
  return process;
}

}  // namespace

StartedProcess StartProcess(const std::string& argument) {
  const Pipe to, from;
  const std::intptr_t process = Spawn(argument, to.ends[0], from.ends[1]);
  return {process, OpenEnds(from.ends[0], to.ends[1])};
}

// "in,out": these ends of the pipes.
Ends OwnEnds(const std::string& more) { return OpenEnds(std::stoi(more), std::stoi(more.substr(more.find(',') + 1))); }

void KillProcess(std::intptr_t id) {
  const auto process = reinterpret_cast<HANDLE>(id);
  ::TerminateProcess(process, 1);
  ::WaitForSingleObjectEx(process, INFINITE, FALSE);
}

int CollectProcess(std::intptr_t id) {
  int status = -1;
  _cwait(&status, id, 0);
  return status;
}

}  // namespace platform_test
