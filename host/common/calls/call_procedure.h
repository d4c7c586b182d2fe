// Calling a window's procedure.
#ifndef QXHOST_COMMON_CALLS_CALL_PROCEDURE_H
#define QXHOST_COMMON_CALLS_CALL_PROCEDURE_H

#include <windows.h>

#include <utility>

#include "common/calls/entry.h"

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
