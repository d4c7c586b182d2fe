#include "support/path_spellings.h"

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace qxtest {
namespace {

namespace fs = std::filesystem;

using Paths = std::vector<std::u16string>;

std::u16string Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::u16string Joined(const Paths& names, const std::u16string& separator) {
  std::u16string path;
  for (const std::u16string& name : names) path += path.empty() ? name : separator + name;
  return path;
}

std::u16string Replaced(std::u16string path, const std::u16string& from, const std::u16string& to) {
  for (std::size_t at = path.find(from); at != path.npos; at = path.find(from, at + to.size())) {
    path.replace(at, from.size(), to);
  }
  return path;
}

// What stands for "one folder up", or might.
const Paths& Ups() {
  static const Paths ups = {u"..",
                            u"...",
                            u"....",
                            u".. ",
                            u" ..",
                            u".. .",
                            u". .",
                            u"..\u00A0",
                            u"..\t",
                            u"..%20",
                            u"%2e%2e",
                            u"%2E.",
                            u"%252e%252e",
                            u"..%00",
                            u"%c0%ae%c0%ae",
                            u"\u2024\u2024",
                            u"\uFF0E\uFF0E",
                            u"\u2025",
                            u"\u2026",
                            u".\u0001.",
                            u"..\u007F",
                            u"..:",
                            u"..::$DATA",
                            u"\"..\"",
                            u"'..'",
                            u"~",
                            u"$HOME",
                            u"`..`",
                            u"..*",
                            u"..?",
                            std::u16string(u".") + char16_t{0xD800} + u".",
                            std::u16string(u"..") + char16_t{0xDC00},
                            u"\uFEFF..",
                            u"..\u200B",
                            u"\u202E..",
                            u".",
                            u"",
                            u" "};
  return ups;
}

// What separates names, or might.
const Paths& Separators() {
  static const Paths separators = {u"\\",  u"/",      u"\\\\",   u"//",     u"\\/",   u"%2f",
                                   u"%5c", u"\u2215", u"\uFF0F", u"\uFF3C", u"\u00A5"};
  return separators;
}

void AddUps(const Paths& target, Paths* paths) {
  for (const std::u16string& up : Ups()) {
    for (const std::u16string& separator : Separators()) {
      Paths names = {up};
      names.insert(names.end(), target.begin(), target.end());
      paths->push_back(Joined(names, separator));
    }
    const std::u16string rest = u"\\" + Joined(target, u"\\");
    paths->push_back(u"\\" + up + rest);
    paths->push_back(u"\\deep\\" + up + u"\\" + up + rest);
    paths->push_back(u"/deep/inner/" + up + u"/" + up + u"/" + up + Replaced(rest, u"\\", u"/"));
  }
  for (int depth = 2; depth <= 40; depth += 2) {
    std::u16string climb;
    for (int i = 0; i < depth; ++i) climb += u"..\\";
    paths->push_back(climb + Joined(target, u"\\"));
  }
}

// The place's own path on this machine, behind everything that could make it an absolute one.
void AddAbsolute(const std::u16string& host_path, Paths* paths) {
  const Paths fronts = {u"",
                        u"/",
                        u"//",
                        u"///",
                        u"\\\\?",
                        u"\\\\.",
                        u"\\\\?\\UNC",
                        u"\\??",
                        u"//./",
                        u"//?/",
                        u"\\\\localhost",
                        u"\\\\127.0.0.1\\c$",
                        u"C:",
                        u"c:",
                        u"C|",
                        u"Z:",
                        u"file://",
                        u"file:///C:",
                        u"\\Device",
                        u"\\GLOBAL??",
                        u"\\\\.\\GLOBALROOT",
                        u"\\\\?\\Z:",
                        u"@",
                        u"~root",
                        u"\\proc\\self\\root",
                        u"deep\\..",
                        u"%SystemDrive%",
                        u"\\$device"};
  for (const std::u16string& front : fronts) {
    paths->push_back(front + host_path);
    paths->push_back(front + Replaced(host_path, u"/", u"\\"));
  }
}

void AddLinks(Paths* paths) {
  const std::u16string secret = Wide(Canary::kSecretFile);
  const Paths rests = {u"", u"\\", u"\\" + secret, u"\\.\\" + secret, u"/" + secret, u"\\inner\\" + secret, u"\\inner"};
  for (const char16_t* link :
       {u"link", u"absolute", u"chain", u"deep\\link", u"deep\\inner\\link", u"LINK", u"link.", u"link "}) {
    for (const std::u16string& rest : rests) {
      paths->push_back(std::u16string(u"\\") + link + rest);
    }
  }
  for (const char16_t* link : {u"file", u"deep\\file", u"dangling", u"loop", u"process", u"process\\cwd",
                               u"descriptors\\0", u"self\\canary", u"pipe", u"up\\canary"}) {
    paths->push_back(std::u16string(u"\\") + link);
  }
}

void AddDevices(Paths* paths) {
  for (const char16_t* device :
       {u"NUL", u"CON", u"PRN", u"AUX", u"COM1", u"COM5", u"LPT1", u"CONIN$", u"CONOUT$", u"CLOCK$"}) {
    for (const char16_t* end : {u"", u":", u".txt", u"\\a"}) {
      paths->push_back(std::u16string(device) + end);
      paths->push_back(std::u16string(u"\\deep\\") + device + end);
    }
  }
  // Of this machine's own paths only such as cannot come to harm, should a call ever reach them.
  for (const char16_t* path : {u"/proc/version", u"\\proc\\self\\environ", u"/proc/self/fd/0", u"/proc/self/root",
                               u"\\\\.\\pipe\\x", u"\\\\.\\PhysicalDrive0", u"\\$bus\\a", u"I2C5:\\a", u"GIO1:a"}) {
    paths->push_back(path);
  }
}

void AddLengths(const Paths& target, Paths* paths) {
  const std::u16string rest = u"\\" + Joined(target, u"\\");
  for (const std::size_t length : {100u, 240u, 254u, 255u, 256u, 259u, 260u, 261u, 300u, 1023u, 4096u, 40000u}) {
    paths->push_back(std::u16string(length, u'a') + u"\\.." + rest);
    paths->push_back(u"\\" + std::u16string(length, u'.') + rest);
    paths->push_back(u".." + std::u16string(length, u'\\') + Joined(target, u"\\"));
    paths->push_back(std::u16string(length, u'\u00E4'));
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
  fs::create_directory_symlink("../canary", root_ / "link");
  fs::create_directory_symlink("../../canary", root_ / "deep" / "link");
  fs::create_directory_symlink("../../../canary", root_ / "deep" / "inner" / "link");
  fs::create_directory_symlink(folder_, root_ / "absolute");
  fs::create_directory_symlink("link", root_ / "chain");
  fs::create_directory_symlink("..", root_ / "up");
  fs::create_directory_symlink("/proc/self", root_ / "process");
  fs::create_directory_symlink("/proc/self/fd", root_ / "descriptors");
  fs::create_directory_symlink(folder_.parent_path(), root_ / "self");
  fs::create_symlink(folder_ / kSecretFile, root_ / "file");
  fs::create_symlink(fs::path("../../canary") / kSecretFile, root_ / "deep" / "file");
  fs::create_symlink("../canary/made", root_ / "dangling");
  fs::create_symlink("loop", root_ / "loop");
}

std::map<std::string, std::string> Canary::Look() const {
  std::map<std::string, std::string> seen;
  const fs::path outer = folder_.parent_path();
  // Not what is in the root, and not the outer folder's own time.
  for (const auto& entry : fs::directory_iterator(outer)) seen[entry.path()] = entry.path() == root_ ? "root" : "";
  for (const auto& entry : fs::recursive_directory_iterator(folder_)) seen[entry.path()] = Describe(entry.path());
  seen[folder_] = Describe(folder_);
  return seen;
}

std::vector<std::u16string> PathSpellings(const Canary& canary) {
  const std::u16string secret = Wide(Canary::kSecretFile);
  Paths paths;
  AddUps({u"canary", secret}, &paths);
  AddUps({u"canary"}, &paths);
  AddAbsolute(Wide((canary.folder() / Canary::kSecretFile).string()), &paths);
  AddAbsolute(Wide((canary.folder() / "empty").string()), &paths);
  AddAbsolute(Wide((canary.folder() / "made").string()), &paths);
  AddLinks(&paths);
  AddDevices(&paths);
  AddLengths({u"canary", secret}, &paths);
  std::set<std::u16string> known;
  Paths different;
  for (std::u16string& path : paths) {
    if (known.insert(path).second) different.push_back(std::move(path));
  }
  return different;
}

}  // namespace qxtest
