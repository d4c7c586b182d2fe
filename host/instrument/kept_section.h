// A section of the state that shows, changes and keeps one kept value.
#ifndef QXHOST_INSTRUMENT_KEPT_SECTION_H
#define QXHOST_INSTRUMENT_KEPT_SECTION_H

#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <utility>

#include "instrument/kept.h"
#include "instrument/state.h"

namespace host::instrument {

/// How a value stands in the document.
template <class Value>
struct KeptForm {
  std::string name;
  Json (*to_json)(const Value&);
  void (*merge)(const Json& patch, Value* value);  ///< throws StateError without the section's name
  Value (*standard)();
  Value (*blank)();  ///< what a whole section is merged into when it is restored
};

/// Apply, Reset and Restore make one change each; they throw std::system_error, with nothing changed, when it cannot be
/// kept. The section ends the keeping when it goes.
template <class Value>
class KeptSection final : public StateSection {
 public:
  KeptSection(Kept<Value>* kept, KeptForm<Value> form) : kept_(kept), form_(std::move(form)) {}
  ~KeptSection() override { kept_->SetKeeper(nullptr); }

  std::string Name() const override { return form_.name; }
  Json ToJson() const override { return kept_->See(form_.to_json); }

  void Check(const Json& patch) const override {
    Value value = kept_->See([](const Value& now) { return now; });
    Merge(patch, &value);
  }

  // The value may have changed since Check: the patch is merged into what it is now.
  void Apply(const Json& patch) override {
    Change([&](Value& value) { Merge(patch, &value); });
  }

  void Reset() override {
    Change([this](Value& value) { value = form_.standard(); });
  }

  void Restore(const Json& whole) override {
    Change([&](Value& value) {
      value = form_.blank();
      Merge(whole, &value);
    });
  }

  bool Persists() const override { return true; }
  void SetKeeper(const Keeper& keeper) override {
    const auto to_json = form_.to_json;
    kept_->SetKeeper([=](const Value& value) { return keeper(to_json(value)); });
  }

 private:
  void Merge(const Json& patch, Value* value) const {
    try {
      form_.merge(patch, value);
    } catch (const StateError& error) {
      throw StateError(form_.name + ": " + error.what());
    }
  }

  template <class Edit>
  void Change(const Edit& edit) {
    const int error = kept_->Change([&](Value& value) {
      edit(value);
      return 0;
    });
    if (error != 0) throw std::system_error(error, std::generic_category(), form_.name + ": cannot be kept");
  }

  Kept<Value>* const kept_;
  const KeptForm<Value> form_;
};

}  // namespace host::instrument

#endif
