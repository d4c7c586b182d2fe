#include "support/path_spellings.h"

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "support/this_machine.h"

namespace qxtest {
namespace {

namespace fs = std::filesystem;

using Paths = std::vector<WideText>;

WideText Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

WideText Joined(const Paths& names, const WideText& separator) {
  WideText path;
  for (const WideText& name : names) path += path.empty() ? name : separator + name;
  return path;
}

WideText Replaced(WideText path, const WideText& from, const WideText& to) {
  for (std::size_t at = path.find(from); at != path.npos; at = path.find(from, at + to.size())) {
    path.replace(at, from.size(), to);
  }
  return path;
}

// What stands for "one folder up", or might.
const Paths& Ups() {
  static const Paths ups = {TEXT(".."),
                            TEXT("..."),
                            TEXT("...."),
                            TEXT(".. "),
                            TEXT(" .."),
                            TEXT(".. ."),
                            TEXT(". ."),
                            TEXT("..\u00A0"),
                            TEXT("..\t"),
                            TEXT("..%20"),
                            TEXT("%2e%2e"),
                            TEXT("%2E."),
                            TEXT("%252e%252e"),
                            TEXT("..%00"),
                            TEXT("%c0%ae%c0%ae"),
                            TEXT("\u2024\u2024"),
                            TEXT("\uFF0E\uFF0E"),
                            TEXT("\u2025"),
                            TEXT("\u2026"),
                            TEXT(".\u0001."),
                            TEXT("..\u007F"),
                            TEXT("..:"),
                            TEXT("..::$DATA"),
                            TEXT("\"..\""),
                            TEXT("'..'"),
                            TEXT("~"),
                            TEXT("$HOME"),
                            TEXT("`..`"),
                            TEXT("..*"),
                            TEXT("..?"),
                            WideText(TEXT(".")) + WCHAR{0xD800} + TEXT("."),
                            WideText(TEXT("..")) + WCHAR{0xDC00},
                            TEXT("\uFEFF.."),
                            TEXT("..\u200B"),
                            TEXT("\u202E.."),
                            TEXT("."),
                            TEXT(""),
                            TEXT(" ")};
  return ups;
}

// What separates names, or might.
const Paths& Separators() {
  static const Paths separators = {TEXT("\\"),     TEXT("/"),      TEXT("\\\\"),  TEXT("//"),
                                   TEXT("\\/"),    TEXT("%2f"),    TEXT("%5c"),   TEXT("\u2215"),
                                   TEXT("\uFF0F"), TEXT("\uFF3C"), TEXT("\u00A5")};
  return separators;
}

void AddUps(const Paths& target, Paths* paths) {
  for (const WideText& up : Ups()) {
    for (const WideText& separator : Separators()) {
      Paths names = {up};
      names.insert(names.end(), target.begin(), target.end());
      paths->push_back(Joined(names, separator));
    }
    const WideText rest = TEXT("\\") + Joined(target, TEXT("\\"));
    paths->push_back(TEXT("\\") + up + rest);
    paths->push_back(TEXT("\\deep\\") + up + TEXT("\\") + up + rest);
    paths->push_back(TEXT("/deep/inner/") + up + TEXT("/") + up + TEXT("/") + up +
                     Replaced(rest, TEXT("\\"), TEXT("/")));
  }
  for (int depth = 2; depth <= 40; depth += 2) {
    WideText climb;
    for (int i = 0; i < depth; ++i) climb += TEXT("..\\");
    paths->push_back(climb + Joined(target, TEXT("\\")));
  }
}

// The place's own path on this machine, behind everything that could make it an absolute one.
void AddAbsolute(const WideText& host_path, Paths* paths) {
  const Paths fronts = {TEXT(""),
                        TEXT("/"),
                        TEXT("//"),
                        TEXT("///"),
                        TEXT("\\\\?"),
                        TEXT("\\\\."),
                        TEXT("\\\\?\\UNC"),
                        TEXT("\\\\?\\unix"),
                        TEXT("\\??"),
                        TEXT("//./"),
                        TEXT("//?/"),
                        TEXT("\\\\localhost"),
                        TEXT("\\\\127.0.0.1\\c$"),
                        TEXT("C:"),
                        TEXT("c:"),
                        TEXT("C|"),
                        TEXT("Z:"),
                        TEXT("file://"),
                        TEXT("file:///C:"),
                        TEXT("\\Device"),
                        TEXT("\\GLOBAL??"),
                        TEXT("\\\\.\\GLOBALROOT"),
                        TEXT("\\\\?\\Z:"),
                        TEXT("@"),
                        TEXT("~root"),
                        TEXT("\\proc\\self\\root"),
                        TEXT("deep\\.."),
                        TEXT("%SystemDrive%"),
                        TEXT("\\$device")};
  for (const WideText& front : fronts) {
    paths->push_back(front + host_path);
    paths->push_back(front + Replaced(host_path, TEXT("/"), TEXT("\\")));
  }
}

void AddLinks(Paths* paths) {
  const WideText secret = Wide(Canary::kSecretFile);
  const Paths rests = {TEXT(""),
                       TEXT("\\"),
                       TEXT("\\") + secret,
                       TEXT("\\.\\") + secret,
                       TEXT("/") + secret,
                       TEXT("\\inner\\") + secret,
                       TEXT("\\inner")};
  for (const WCHAR* link : {TEXT("link"), TEXT("absolute"), TEXT("chain"), TEXT("deep\\link"),
                            TEXT("deep\\inner\\link"), TEXT("LINK"), TEXT("link."), TEXT("link ")}) {
    for (const WideText& rest : rests) {
      paths->push_back(WideText(TEXT("\\")) + link + rest);
    }
  }
  for (const WCHAR* link :
       {TEXT("file"), TEXT("deep\\file"), TEXT("dangling"), TEXT("loop"), TEXT("process"), TEXT("process\\cwd"),
        TEXT("descriptors\\0"), TEXT("self\\canary"), TEXT("pipe"), TEXT("up\\canary")}) {
    paths->push_back(WideText(TEXT("\\")) + link);
  }
}

void AddDevices(Paths* paths) {
  for (const WCHAR* device : {TEXT("NUL"), TEXT("CON"), TEXT("PRN"), TEXT("AUX"), TEXT("COM1"), TEXT("COM5"),
                              TEXT("LPT1"), TEXT("CONIN$"), TEXT("CONOUT$"), TEXT("CLOCK$")}) {
    for (const WCHAR* end : {TEXT(""), TEXT(":"), TEXT(".txt"), TEXT("\\a")}) {
      paths->push_back(WideText(device) + end);
      paths->push_back(WideText(TEXT("\\deep\\")) + device + end);
    }
  }
  // Of this machine's own paths only such as cannot come to harm, should a call ever reach them.
  for (const WCHAR* path :
       {TEXT("/proc/version"), TEXT("\\proc\\self\\environ"), TEXT("/proc/self/fd/0"), TEXT("/proc/self/root"),
        TEXT("\\\\.\\pipe\\x"), TEXT("\\\\.\\PhysicalDrive0"), TEXT("\\$bus\\a"), TEXT("I2C5:\\a"), TEXT("GIO1:a")}) {
    paths->push_back(path);
  }
}

void AddLengths(const Paths& target, Paths* paths) {
  const WideText rest = TEXT("\\") + Joined(target, TEXT("\\"));
  for (const std::size_t length : {100u, 240u, 254u, 255u, 256u, 259u, 260u, 261u, 300u, 1023u, 4096u, 40000u}) {
    paths->push_back(WideText(length, TEXT('a')) + TEXT("\\..") + rest);
    paths->push_back(TEXT("\\") + WideText(length, TEXT('.')) + rest);
    paths->push_back(TEXT("..") + WideText(length, TEXT('\\')) + Joined(target, TEXT("\\")));
    paths->push_back(WideText(length, TEXT('\u00E4')));
  }
}

std::string Describe(const fs::path& path) {
  std::ostringstream text;
  const fs::file_status status = fs::symlink_status(path);
  text << static_cast<int>(status.type()) << ' ' << static_cast<unsigned>(status.permissions()) << ' '
       << fs::last_write_time(path).time_since_epoch().count();
  if (status.type() == fs::file_type::regular) {
    std::ifstream file(path, std::ios::binary);
    text << ' ' << std::string(std::istreambuf_iterator<char>(file), {});
  }
  return text.str();
}

}  // namespace

Canary::Canary(const fs::path& root) : root_(root), folder_(root.parent_path() / "canary") {
  fs::create_directories(folder_ / "inner");
  std::ofstream(folder_ / kSecretFile) << kSecret;
  std::ofstream(folder_ / "inner" / kSecretFile) << kSecret;
  fs::create_directory(folder_ / "empty");
  PlantLinks();
}

void Canary::PlantLinks() const {
  fs::create_directories(root_ / "deep" / "inner");
  MakeLinks({{"../canary", root_ / "link"},
             {"../../canary", root_ / "deep" / "link"},
             {"../../../canary", root_ / "deep" / "inner" / "link"},
             {folder_, root_ / "absolute"},
             {"link", root_ / "chain"},
             {"..", root_ / "up"},
             {"/proc/self", root_ / "process"},
             {"/proc/self/fd", root_ / "descriptors"},
             {folder_.parent_path(), root_ / "self"},
             {folder_ / kSecretFile, root_ / "file"},
             {fs::path("../../canary") / kSecretFile, root_ / "deep" / "file"},
             {"../canary/made", root_ / "dangling"},
             {"loop", root_ / "loop"}});
}

std::map<std::string, std::string> Canary::Look() const {
  std::map<std::string, std::string> seen;
  const fs::path outer = folder_.parent_path();
  // Not what is in the root, and not the outer folder's own time.
  for (const auto& entry : fs::directory_iterator(outer))
    seen[entry.path().u8string()] = entry.path() == root_ ? "root" : "";
  for (const auto& entry : fs::recursive_directory_iterator(folder_))
    seen[entry.path().u8string()] = Describe(entry.path());
  seen[folder_.u8string()] = Describe(folder_);
  return seen;
}

std::vector<WideText> PathSpellings(const Canary& canary) {
  const WideText secret = Wide(Canary::kSecretFile);
  Paths paths;
  AddUps({TEXT("canary"), secret}, &paths);
  AddUps({TEXT("canary")}, &paths);
  for (const char* place : {Canary::kSecretFile, "empty", "made"}) {
    for (const std::string& name : NamesOf(canary.folder() / place)) AddAbsolute(Wide(name), &paths);
  }
  AddLinks(&paths);
  AddDevices(&paths);
  AddLengths({TEXT("canary"), secret}, &paths);
  std::set<WideText> known;
  Paths different;
  for (WideText& path : paths) {
    if (known.insert(path).second) different.push_back(std::move(path));
  }
  return different;
}

}  // namespace qxtest
