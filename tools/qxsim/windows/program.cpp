#include "qxsim/system/program.h"

#include <fcntl.h>
#include <io.h>
// clang-format off
#include <windows.h>
#include <shellapi.h>  // needs the one before
// clang-format on

#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <thread>

namespace qxsim {
namespace {

struct Wish {
  std::mutex mutex;
  std::condition_variable changed;
  bool made = false;  // guarded by mutex
};

// Never destroyed: the console's handler may come while the process ends.
Wish& TheWish() {
  static auto* wish = new Wish;
  return *wish;
}

void MakeWish() {
  Wish& wish = TheWish();
  const std::lock_guard<std::mutex> lock(wish.mutex);
  wish.made = true;
  wish.changed.notify_all();
}

// The process ends when this returns from anything but Ctrl-C and Ctrl-Break: the program's own end comes first.
BOOL WINAPI TakeConsoleEvent(DWORD event) {
  MakeWish();
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

std::vector<std::string> ProgramArguments(int argc, char** argv) {
  int count = 0;
  LPWSTR* const wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(std::filesystem::path(wide[i]).u8string());
  ::LocalFree(wide);
  return arguments;
}

EndRequest::EndRequest() {
  // Lines end in "\n" alone, as everywhere.
  for (std::FILE* stream : {stdout, stderr}) ::_setmode(::_fileno(stream), _O_BINARY);
  ::SetConsoleCtrlHandler(nullptr, FALSE);  // whoever started the program may have had Ctrl-C ignored
  ::SetConsoleCtrlHandler(TakeConsoleEvent, TRUE);
}

void EndRequest::Wait() {
  Wish& wish = TheWish();
  std::unique_lock<std::mutex> lock(wish.mutex);
  wish.changed.wait(lock, [&wish] { return wish.made; });
}

}  // namespace qxsim
