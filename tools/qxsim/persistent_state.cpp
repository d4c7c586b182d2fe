#include "qxsim/persistent_state.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "qxsim/start_error.h"

namespace qxsim {
namespace {

constexpr int kDeepest = 32;
constexpr const char* kFormatMember = "format";
constexpr const char* kFormat = "qxsim state 1";

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why) {
  throw StartError("home: " + file.string() + ": " + why);
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

std::string Text(const Json& content) { return content.dump(1, ' ', false, Json::error_handler_t::replace); }

std::string SectionText(const std::string& name, const std::string& text) {
  return ",\n" + Json(name).dump() + ": " + text;
}

}  // namespace

PersistentState::PersistentState(const std::filesystem::path& file) : file_(file) {
  const std::optional<std::string> text = file_.Read();
  if (!text) return;
  read_text_ = *text;
  try {
    Take(Parse(read_text_));
  } catch (const StartError&) {
    throw;
  } catch (const std::exception& error) {
    Refuse(file_.path(), std::string("damaged: ") + error.what());
  }
}

void PersistentState::Take(const nlohmann::json& document) {
  if (!document.is_object() || document.value(kFormatMember, Json()) != kFormat)
    Refuse(file_.path(), "not a state of qxsim");
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
    Refuse(file_.path(), std::string("damaged: ") + error.what());
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  sections_.push_back({section.Name(), Text(section.ToJson())});
}

void PersistentState::Begin() {
  if (!read_.empty()) Refuse(file_.path(), "holds a section this qxsim does not know: " + read_.begin()->first);
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::string text = FileText(nullptr, {});
  if (text == read_text_) return;
  if (const int error = file_.Replace(text)) Refuse(file_.path(), std::strerror(error));
}

int PersistentState::Save(const std::string& name, const Json& content) {
  std::string text = Text(content);
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto section = std::find_if(sections_.begin(), sections_.end(),
                                    [&](const Section& candidate) { return candidate.name == name; });
  if (section == sections_.end()) return EINVAL;
  if (section->text == text) return 0;
  if (const int error = file_.Replace(FileText(&*section, text))) return error;
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

}  // namespace qxsim
