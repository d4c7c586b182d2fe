// Calling a window's procedure.
#ifndef QXHOST_POSIX_CALLS_CALL_PROCEDURE_H
#define QXHOST_POSIX_CALLS_CALL_PROCEDURE_H

#include <windows.h>

#include <utility>

#include "posix/calls/entry.h"

namespace host {

/// Calls it as what it is: the application's code, even inside one of the library's calls.
inline LRESULT CallProcedure(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const unsigned depth = std::exchange(internal::call_depth, 0u);
  const LRESULT result = procedure(window, message, wparam, lparam);
  internal::call_depth = depth;
  return result;
}

}  // namespace host

#endif
