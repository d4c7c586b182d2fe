// Events.
#include <memory>
#include <utility>

#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "posix/kernel/named_object.h"
#include "posix/sync/waits.h"

namespace host {
namespace {

class Event final : public Waitable {
 public:
  explicit Event(EventState state) : own_(state), state_(own_) {}
  explicit Event(std::unique_ptr<NamedObject> named) : named_(std::move(named)), state_(named_->slot().event) {}

  bool Ready(const ThreadState&) override { return state_.set; }

  bool Take(ThreadState&) override {
    if (!state_.manual_reset) state_.set = false;
    return false;
  }

  ObjectNamespace* Space() const override { return named_ != nullptr ? &named_->space() : nullptr; }

  void Modify(bool set) {
    WithLocks(named_, [&](KernelLock& lock) {
      state_.set = set;
      if (set) Signal(lock);
    });
  }

 private:
  EventState own_;
  const std::unique_ptr<NamedObject> named_;
  EventState& state_;  // guarded by the kernel lock and, for a named event, its namespace's
};

}  // namespace

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
  const EventState state{manual_reset != FALSE, initial_state != FALSE};
  SetLastError(ERROR_SUCCESS);
  if (name == nullptr || *name == 0) return InsertHandle(std::make_shared<Event>(state));
  auto named = NamedObject::Open(name, ObjectKind::kEvent, [&](ObjectSlot& slot, const auto&) { slot.event = state; });
  return named == nullptr ? nullptr : InsertHandle(std::make_shared<Event>(std::move(named)));
}

BOOL EventModify(HANDLE handle, DWORD function) {
  const auto event = FindHandle<Event>(handle);
  if (event == nullptr) return FALSE;
  if (function != kEventSet && function != kEventReset) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  event->Modify(function == kEventSet);
  return TRUE;
}

}  // namespace host
