// The instrument's state as one JSON document, put together from sections that the instrument's parts register.
//
// A change is a merge patch (RFC 7396). It is checked whole before anything changes.
#ifndef QXHOST_INSTRUMENT_STATE_H
#define QXHOST_INSTRUMENT_STATE_H

#include <functional>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace host::instrument {

/// Members keep the order they are given in.
using Json = nlohmann::ordered_json;

/// Why a patch is refused: which member, and what is wrong with it.
class StateError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One member of the document. Called by the document only, one call at a time; a section whose values other threads
/// read or change locks them itself.
class StateSection {
 public:
  StateSection() = default;
  StateSection(const StateSection&) = delete;
  StateSection& operator=(const StateSection&) = delete;
  virtual ~StateSection() = default;

  /// The member's name; the same at every call.
  virtual std::string Name() const = 0;
  virtual Json ToJson() const = 0;
  /// Throws StateError when this patch of the section cannot be applied. Changes nothing.
  virtual void Check(const Json& patch) const = 0;
  /// Applies a patch that Check let pass, and returns when the events for it have been handled.
  virtual void Apply(const Json& patch) = 0;
  /// Back to the defaults.
  virtual void Reset() = 0;
  /// Back to what ToJson once gave. Throws StateError, with nothing changed, when it cannot have given this.
  virtual void Restore(const Json& whole);

  /// Whether its content outlasts the instrument's being switched off.
  virtual bool Persists() const { return false; }
  /// Keeps the content that a change leads to, as ToJson will give it, before the change is seen and its call returns.
  /// Returns 0, or errno to refuse the change with. Called with the section's changes held up; must not change it.
  using Keeper = std::function<int(const Json&)>;
  /// For sections that persist; the others have nothing to keep. It may be called until the section goes.
  virtual void SetKeeper(const Keeper&) {}
};

/// The document. Any thread; changes are made one after the other.
class State {
 public:
  /// Sections appear in the order they are added, and are changed in that order. The section must outlive the state.
  void Add(StateSection* section);

  Json ToJson() const;
  /// Throws StateError, with nothing changed, for an unknown member, a wrong type or value, or a read-only member.
  void Patch(const Json& patch);
  void Reset();

 private:
  StateSection* Find(const std::string& name) const;

  mutable std::mutex mutex_;             // one change or look at a time
  std::vector<StateSection*> sections_;  // guarded by mutex_
};

}  // namespace host::instrument

#endif
