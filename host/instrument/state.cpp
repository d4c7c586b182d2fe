#include "instrument/state.h"

#include <nlohmann/json.hpp>

namespace host::instrument {

void StateSection::Restore(const Json& whole) {
  Check(whole);
  Reset();
  Apply(whole);
}

void State::Add(StateSection* section) {
  const std::lock_guard<std::mutex> lock(mutex_);
  sections_.push_back(section);
}

StateSection* State::Find(const std::string& name) const {
  for (StateSection* section : sections_) {
    if (section->Name() == name) return section;
  }
  throw StateError("unknown member: " + name);
}

Json State::ToJson() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  Json document = Json::object();
  for (const StateSection* section : sections_) document[section->Name()] = section->ToJson();
  return document;
}

void State::Patch(const Json& patch) {
  if (!patch.is_object()) throw StateError("an object is expected");
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& member : patch.items()) Find(member.key())->Check(member.value());
  for (StateSection* section : sections_) {
    const auto member = patch.find(section->Name());
    if (member != patch.end()) section->Apply(*member);
  }
}

void State::Reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (StateSection* section : sections_) section->Reset();
}

}  // namespace host::instrument
