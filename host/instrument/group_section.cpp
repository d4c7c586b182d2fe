#include "instrument/group_section.h"

#include <nlohmann/json.hpp>

namespace host::instrument {

GroupSection::GroupSection(std::string name, std::vector<Member> members, std::function<void()> reset)
    : name_(std::move(name)), reset_(std::move(reset)) {
  for (Member& member : members) {
    parts_.push_back(
        {member.name, std::make_unique<FieldSection>(name_ + "." + member.name, std::move(member.fields))});
  }
}

const GroupSection::Part& GroupSection::Find(const std::string& member) const {
  for (const Part& part : parts_) {
    if (part.name == member) return part;
  }
  throw StateError("unknown member: " + name_ + "." + member);
}

Json GroupSection::ToJson() const {
  Json group = Json::object();
  for (const Part& part : parts_) group[part.name] = part.section->ToJson();
  return group;
}

void GroupSection::Check(const Json& patch) const {
  if (!patch.is_object()) throw StateError(name_ + ": an object is expected");
  for (const auto& member : patch.items()) Find(member.key()).section->Check(member.value());
}

void GroupSection::Apply(const Json& patch) {
  for (const Part& part : parts_) {
    const auto member = patch.find(part.name);
    if (member != patch.end()) part.section->Apply(*member);
  }
}

void GroupSection::Reset() {
  for (const Part& part : parts_) part.section->Reset();
  if (reset_) reset_();
}

}  // namespace host::instrument
