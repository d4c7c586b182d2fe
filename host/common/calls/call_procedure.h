// Calling a window's procedure.
#ifndef QXHOST_COMMON_CALLS_CALL_PROCEDURE_H
#define QXHOST_COMMON_CALLS_CALL_PROCEDURE_H

#include <windows.h>

#include "common/calls/entry.h"

namespace host {

/// Calls it as what it is: the application's code, even inside one of the library's calls.
inline LRESULT CallProcedure(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const internal::OutsideCalls application;
  return procedure(window, message, wparam, lparam);
}

}  // namespace host

#endif
