// Windows makes links itself, for who may. Wine takes the call and makes none: there the machine behind it makes them,
// as it may do whenever it likes. It also makes many files in no time, where Wine looks through the whole folder for
// each.
#include "win32_this_machine.h"

#include <process.h>
#include <windows.h>

#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "support/this_machine.h"

namespace qxtest {
namespace {

namespace fs = std::filesystem;

std::vector<Link>& Made() {
  static std::vector<Link> made;
  return made;
}

/// The path as the machine behind Wine knows it; empty on Windows.
std::string UnixName(const fs::path& path) {
  using Call = char*(CDECL*)(LPCWSTR);
  void* call = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name"));
  if (call == nullptr) return {};
  char* name = reinterpret_cast<Call>(call)(path.c_str());
  const std::string text = name == nullptr ? "" : name;
  HeapFree(GetProcessHeap(), 0, name);
  return text;
}

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

// A target as the link is to hold it: a path of this machine by its own name there, all else as it stands.
std::string UnixTarget(const fs::path& target) {
  return target.has_root_name() ? UnixName(target) : target.generic_u8string();
}

/// Runs commands of the machine behind Wine one after the other, and waits until the last has been run.
void RunBehindWine(const std::string& commands, const fs::path& folder) {
  const fs::path done = folder / "done";
  const std::string script = commands + ": >" + Quoted(UnixName(done));
  const std::wstring argument = L"\"" + std::wstring(script.begin(), script.end()) + L"\"";
  _wspawnl(_P_NOWAIT, L"\\\\?\\unix\\bin\\sh", L"sh", L"-c", argument.c_str(), nullptr);
  const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!fs::exists(done)) {
    if (std::chrono::steady_clock::now() > until) throw std::runtime_error("not run: " + commands);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  fs::remove(done);
}

void MakeOnWindows(const Link& link) {
  constexpr DWORD kForEveryUser = 2;  // where Windows is set so
  const fs::path whole = link.place.parent_path() / link.target;
  const DWORD folder = fs::is_directory(whole) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
  if (CreateSymbolicLinkW(link.place.c_str(), link.target.c_str(), folder | kForEveryUser)) return;
  throw std::runtime_error("no link: " + link.place.u8string() + ": error " + std::to_string(GetLastError()));
}

}  // namespace

void MakeLinks(const std::vector<Link>& links) {
  std::string commands;
  for (const Link& link : links) {
    Made().push_back(link);
    const std::string place = UnixName(link.place);
    if (place.empty()) MakeOnWindows(link);
    commands += "ln -s " + Quoted(UnixTarget(link.target)) + " " + Quoted(place) + " && ";
  }
  if (!UnixName(links.at(0).place).empty()) RunBehindWine(commands, links.at(0).place.parent_path().parent_path());
}

void RemoveLinks() {
  std::string commands;
  for (const Link& link : Made()) {
    const std::string place = UnixName(link.place);
    if (place.empty()) fs::remove(link.place);
    commands += "rm -f " + Quoted(place) + " && ";
  }
  const bool behind_wine = !Made().empty() && !UnixName(Made().at(0).place).empty();
  if (behind_wine) RunBehindWine(commands, Made().at(0).place.parent_path().parent_path());
  Made().clear();
}

void MakeManyFiles(const fs::path& folder, int count) {
  const std::string behind = UnixName(folder);
  if (!behind.empty()) {
    const std::string names = "seq -f 'file %.0f.txt' 0 " + std::to_string(count - 1);
    return RunBehindWine("cd " + Quoted(behind) + " && " + names + " | xargs -d '\\n' touch && ", folder.parent_path());
  }
  for (int i = 0; i < count; ++i) {
    std::ofstream file(folder / ("file " + std::to_string(i) + ".txt"));
    if (!file) throw std::runtime_error("no file in " + folder.u8string());
  }
}

std::vector<std::string> NamesOf(const fs::path& path) {
  const std::string behind = UnixName(path);
  return behind.empty() ? std::vector<std::string>{path.u8string()} : std::vector<std::string>{path.u8string(), behind};
}

}  // namespace qxtest
