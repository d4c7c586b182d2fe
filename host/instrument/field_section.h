// A section of the state with a fixed set of members, each a value with its own check.
#ifndef QXHOST_INSTRUMENT_FIELD_SECTION_H
#define QXHOST_INSTRUMENT_FIELD_SECTION_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "instrument/state.h"

namespace host::instrument {

/// One member: how it is read, and unless it is read-only, checked, set and reset.
struct Field {
  std::string name;
  std::function<Json()> get;
  std::function<void(const Json&)> check;  ///< throws StateError without the member's name; null: read-only
  std::function<void(const Json&)> set;
  std::function<void()> reset;  ///< null: nothing to reset
};

Field ReadOnlyField(std::string name, std::function<Json()> get);
Field BoolField(std::string name, std::function<bool()> get, std::function<void(bool)> set, bool standard);
/// A whole number from lowest to highest.
Field IntegerField(std::string name, std::function<std::int64_t()> get, std::function<void(std::int64_t)> set,
                   std::int64_t standard, std::int64_t lowest, std::int64_t highest);
/// Any number.
Field NumberField(std::string name, std::function<double()> get, std::function<void(double)> set, double standard);
/// A text out of a few.
Field ChoiceField(std::string name, std::function<std::string()> get, std::function<void(const std::string&)> set,
                  std::string standard, std::vector<std::string> choices);

class FieldSection : public StateSection {
 public:
  /// \param changed  called after members have been set or reset; null for nothing to do
  FieldSection(std::string name, std::vector<Field> fields, std::function<void()> changed = nullptr);

  std::string Name() const override { return name_; }
  Json ToJson() const override;
  void Check(const Json& patch) const override;
  /// Sets the members in the section's own order.
  void Apply(const Json& patch) override;
  void Reset() override;

 private:
  const Field& Find(const std::string& member) const;

  std::string name_;
  std::vector<Field> fields_;
  std::function<void()> changed_;
};

}  // namespace host::instrument

#endif
