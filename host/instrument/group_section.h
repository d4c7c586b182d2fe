// A section of the state whose members are sections: "sensors": {"edm": {...}, "angle": {...}}.
#ifndef QXHOST_INSTRUMENT_GROUP_SECTION_H
#define QXHOST_INSTRUMENT_GROUP_SECTION_H

#include <memory>
#include <string>
#include <vector>

#include "instrument/field_section.h"

namespace host::instrument {

class GroupSection final : public StateSection {
 public:
  struct Member {
    std::string name;
    std::vector<Field> fields;
  };

  /// \param reset  what a reset does after the members' own; null for nothing
  GroupSection(std::string name, std::vector<Member> members, std::function<void()> reset = nullptr);

  std::string Name() const override { return name_; }
  Json ToJson() const override;
  void Check(const Json& patch) const override;
  /// Changes the members in the group's own order.
  void Apply(const Json& patch) override;
  void Reset() override;

 private:
  struct Part {
    std::string name;
    std::unique_ptr<FieldSection> section;  // named with the group's name in front, for its errors
  };

  const Part& Find(const std::string& member) const;

  std::string name_;
  std::vector<Part> parts_;
  std::function<void()> reset_;
};

}  // namespace host::instrument

#endif
