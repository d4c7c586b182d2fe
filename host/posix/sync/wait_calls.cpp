// The waits by handle.
#include <algorithm>

#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "posix/sync/thread_state.h"
#include "posix/sync/waits.h"
#include "posix/windows/message_queue.h"

namespace host {
namespace {

// Adds all objects to the thread's next wait, or none; sets the last error.
bool AddAll(Waiter& waiter, DWORD count, const HANDLE* handles) {
  for (DWORD i = 0; i < count; ++i) {
    auto object = FindHandle<Waitable>(handles[i]);
    if (object == nullptr) {
      waiter.Clear();
      return false;
    }
    waiter.Add(std::move(object));
  }
  return true;
}

}  // namespace

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  Waiter& waiter = CurrentThread().waiter;
  return AddAll(waiter, 1, &object) ? waiter.Wait(false, milliseconds) : WAIT_FAILED;
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds) {
  if (count == 0 || count > MAXIMUM_WAIT_OBJECTS || objects == nullptr) {
    return Fail(ERROR_INVALID_PARAMETER, WAIT_FAILED);
  }
  Waiter& waiter = CurrentThread().waiter;
  return AddAll(waiter, count, objects) ? waiter.Wait(all != FALSE, milliseconds) : WAIT_FAILED;
}

DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* objects, DWORD milliseconds, DWORD wake_mask,
                                  DWORD flags) {
  const bool no_objects = count != 0 && objects == nullptr;
  if (no_objects || count >= MAXIMUM_WAIT_OBJECTS || (flags & ~MWMO_INPUTAVAILABLE) != 0) {
    return Fail(ERROR_INVALID_PARAMETER, WAIT_FAILED);
  }
  ThreadState& thread = CurrentThread();
  if (!AddAll(thread.waiter, count, objects)) return WAIT_FAILED;
  return WaitWithInput(thread, wake_mask, (flags & MWMO_INPUTAVAILABLE) != 0, milliseconds);
}

}  // namespace host
