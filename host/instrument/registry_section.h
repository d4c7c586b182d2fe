// "registry" in the state document: the instrument's registry.
#ifndef QXHOST_INSTRUMENT_REGISTRY_SECTION_H
#define QXHOST_INSTRUMENT_REGISTRY_SECTION_H

#include "instrument/state.h"

namespace host::instrument {

/// Apply, Reset and Restore make one change each. They throw std::runtime_error, with nothing changed, when the
/// registry cannot be kept. The section ends the keeping when it goes.
class RegistrySection final : public StateSection {
 public:
  ~RegistrySection() override;

  std::string Name() const override { return "registry"; }
  Json ToJson() const override;
  void Check(const Json& patch) const override;
  void Apply(const Json& patch) override;
  void Reset() override;
  void Restore(const Json& whole) override;
  bool Persists() const override { return true; }
  void SetKeeper(const Keeper& keeper) override;
};

}  // namespace host::instrument

#endif
