#include "qxsim/persistent_state.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "posix/kernel/file_descriptor.h"
#include "qxsim/start_error.h"

namespace qxsim {
namespace {

constexpr int kDeepest = 32;
constexpr const char* kFormatMember = "format";
constexpr const char* kFormat = "qxsim state 1";

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why) {
  throw StartError("home: " + file.string() + ": " + why);
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// The same in another kind of JSON. Its members are not looked for one by one, however many there are.
Json ToOrdered(const nlohmann::json& json) {
  if (!json.is_object()) return Json::parse(json.dump());
  Json::object_t members;
  for (const auto& member : json.items()) {
    static_cast<std::vector<Json::object_t::value_type>&>(members).emplace_back(member.key(),
                                                                                ToOrdered(member.value()));
  }
  return members;
}

nlohmann::json Parse(const std::string& text) {
  return nlohmann::json::parse(text, [](int depth, nlohmann::json::parse_event_t, const nlohmann::json&) {
    if (depth > kDeepest) throw std::invalid_argument("nested too deeply");
    return true;
  });
}

/// The whole file; nothing when there is none. Throws StartError.
std::optional<std::string> ReadFile(const std::filesystem::path& file) {
  const host::FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.get() < 0 && errno == ENOENT) return std::nullopt;
  if (descriptor.get() < 0) Refuse(file, std::strerror(errno));
  std::string text;
  char bytes[65536];
  ssize_t count;
  while ((count = read(descriptor.get(), bytes, sizeof bytes)) > 0) text.append(bytes, static_cast<std::size_t>(count));
  if (count < 0) Refuse(file, std::strerror(errno));
  return text;
}

/// A new file with this text, on the disk when it returns 0; else errno.
int WriteFile(const std::filesystem::path& file, const std::string& text) {
  const host::FileDescriptor descriptor(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  const bool written = descriptor.get() >= 0 && WriteAll(descriptor.get(), text) && fdatasync(descriptor.get()) == 0;
  return written ? 0 : errno;
}

std::string Text(const Json& content) { return content.dump(1, ' ', false, Json::error_handler_t::replace); }

std::string SectionText(const std::string& name, const std::string& text) {
  return ",\n" + Json(name).dump() + ": " + text;
}

}  // namespace

// What a simulator that was killed while it wrote has left behind goes first.
PersistentState::PersistentState(std::filesystem::path file)
    : file_(std::move(file)), new_file_(file_.string() + ".new") {
  if (unlink(new_file_.c_str()) != 0 && errno != ENOENT) Refuse(new_file_, std::strerror(errno));
  const std::optional<std::string> text = ReadFile(file_);
  if (!text) return;
  read_text_ = *text;
  try {
    Take(Parse(read_text_));
  } catch (const StartError&) {
    throw;
  } catch (const std::exception& error) {
    Refuse(file_, std::string("damaged: ") + error.what());
  }
}

void PersistentState::Take(const nlohmann::json& document) {
  if (!document.is_object() || document.value(kFormatMember, Json()) != kFormat) Refuse(file_, "not a state of qxsim");
  for (const auto& member : document.items()) {
    if (member.key() != kFormatMember) read_[member.key()] = ToOrdered(member.value());
  }
}

void PersistentState::Add(host::instrument::StateSection& section) {
  try {
    const auto found = read_.find(section.Name());
    if (found != read_.end()) section.Restore(found->second);
    read_.erase(section.Name());
  } catch (const host::instrument::StateError& error) {
    Refuse(file_, std::string("damaged: ") + error.what());
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  sections_.push_back({section.Name(), Text(section.ToJson())});
}

void PersistentState::Begin() {
  if (!read_.empty()) Refuse(file_, "holds a section this qxsim does not know: " + read_.begin()->first);
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::string text = FileText(nullptr, {});
  if (text == read_text_) return;
  if (const int error = Write(text)) Refuse(file_, std::strerror(error));
}

int PersistentState::Save(const std::string& name, const Json& content) {
  std::string text = Text(content);
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto section = std::find_if(sections_.begin(), sections_.end(),
                                    [&](const Section& candidate) { return candidate.name == name; });
  if (section == sections_.end()) return EINVAL;
  if (section->text == text) return 0;
  if (const int error = Write(FileText(&*section, text))) return error;
  section->text = std::move(text);
  return 0;
}

std::string PersistentState::FileText(const Section* changed, const std::string& changed_text) const {
  std::string text = "{\n" + Json(kFormatMember).dump() + ": " + Json(kFormat).dump();
  for (const Section& section : sections_) {
    text += SectionText(section.name, &section == changed ? changed_text : section.text);
  }
  return text + "\n}\n";
}

int PersistentState::Write(const std::string& text) const {
  int error = WriteFile(new_file_, text);
  if (error == 0 && rename(new_file_.c_str(), file_.c_str()) != 0) error = errno;
  if (error != 0) unlink(new_file_.c_str());
  return error;
}

}  // namespace qxsim
