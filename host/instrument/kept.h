// A value of the instrument that outlasts its being switched off.
#ifndef QXHOST_INSTRUMENT_KEPT_H
#define QXHOST_INSTRUMENT_KEPT_H

#include <functional>
#include <mutex>
#include <utility>

namespace host::instrument {

/// Any thread. A change is seen by all at once, when it has been kept: nobody ever sees one that is refused, and
/// looking never waits for a change that is being kept.
template <class Value>
class Kept {
 public:
  explicit Kept(Value value) : value_(std::move(value)) {}

  /// What `look` makes of the value. It must not come back here.
  template <class Look>
  auto See(const Look& look) const {
    const std::lock_guard<std::mutex> lock(value_mutex_);
    return look(value_);
  }

  /// Makes one change; changes are made one after the other. `edit` turns the value into another and returns 0 or an
  /// error code; it may throw. Returns 0 when the change has been kept, else the edit's or the keeper's error with
  /// nothing changed.
  template <class Edit>
  int Change(const Edit& edit) {
    const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
    Value after = See([](const Value& value) { return value; });
    if (const int error = edit(after)) return error;
    if (const int error = keeper_ ? keeper_(after) : 0) return error;
    const std::lock_guard<std::mutex> lock(value_mutex_);
    value_ = std::move(after);
    return 0;
  }

  /// Keeps the value that a change leads to somewhere that lasts: 0, or the error code to refuse the change with. It
  /// may look at the value, and sees it without the change.
  using Keeper = std::function<int(const Value&)>;

  /// Null for none. On return the keeper before is not called any more.
  void SetKeeper(Keeper keeper) {
    const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
    keeper_ = std::move(keeper);
  }

 private:
  std::mutex change_mutex_;  // held for a whole change, the keeper's call included; taken before value_mutex_
  Keeper keeper_;            // guarded by change_mutex_
  mutable std::mutex value_mutex_;
  Value value_;  // guarded by value_mutex_; written with change_mutex_ held too
};

}  // namespace host::instrument

#endif
