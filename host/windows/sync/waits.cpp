// The waits: the system's own. What they take is noted, for mutexes that have a name.
#include "common/calls/errors.h"
#include "common/sync/sync.h"
#include "windows/kernel/named_mutexes.h"

namespace host {
namespace {

// The system takes this value for the process itself.
bool AllHandles(DWORD count, const HANDLE* objects) {
  for (DWORD i = 0; i < count && i < MAXIMUM_WAIT_OBJECTS; ++i) {
    if (objects[i] == INVALID_HANDLE_VALUE) return Fail(ERROR_INVALID_HANDLE, false);
  }
  return true;
}

// What the wait's result says has been taken: one object, or all.
DWORD Noted(DWORD result, DWORD count, const HANDLE* objects, bool all) {
  const DWORD first = result >= WAIT_ABANDONED_0 && result < WAIT_TIMEOUT ? WAIT_ABANDONED_0 : WAIT_OBJECT_0;
  if (result - first >= count) return result;
  for (DWORD i = 0; i < count; ++i) {
    if (all || i == result - first) NoteTaken(objects[i]);
  }
  return result;
}

}  // namespace

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
  if (!AllHandles(1, &object)) return WAIT_FAILED;
  return Noted(::WaitForSingleObject(object, milliseconds), 1, &object, false);
}

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds) {
  if (objects == nullptr) return Fail(ERROR_INVALID_PARAMETER, WAIT_FAILED);
  if (!AllHandles(count, objects)) return WAIT_FAILED;
  return Noted(::WaitForMultipleObjects(count, objects, all, milliseconds), count, objects, all != FALSE);
}

DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* objects, DWORD milliseconds, DWORD wake_mask,
                                  DWORD flags) {
  const bool no_objects = count != 0 && objects == nullptr;
  if (no_objects || (flags & ~static_cast<DWORD>(MWMO_INPUTAVAILABLE)) != 0) {
    return Fail(ERROR_INVALID_PARAMETER, WAIT_FAILED);
  }
  if (!AllHandles(count, objects)) return WAIT_FAILED;
  const DWORD result = ::MsgWaitForMultipleObjectsEx(count, objects, milliseconds, wake_mask, flags);
  return Noted(result, count, objects, false);
}

}  // namespace host
