#include "windows/windows/window_classes.h"

#include <map>
#include <mutex>

#include "common/calls/call_procedure.h"
#include "common/calls/errors.h"
#include "common/windows/windows_messages.h"
#include "windows/windows/message_numbers.h"

namespace host {
namespace {

struct Classes {
  std::mutex mutex;
  std::map<ATOM, WNDPROC> procedures;  // the applications'; guarded by mutex
};

Classes& TheClasses() {
  static auto* classes = new Classes;  // threads may outlive the end of main
  return *classes;
}

thread_local bool making_a_window = false;

// The procedure of the window's class; null for a class that was not registered here.
WNDPROC ClassProcedure(HWND window) {
  const auto atom = static_cast<ATOM>(::GetClassLongPtrW(window, GCW_ATOM));
  Classes& classes = TheClasses();
  const std::lock_guard<std::mutex> lock(classes.mutex);
  const auto found = classes.procedures.find(atom);
  return found == classes.procedures.end() ? nullptr : found->second;
}

LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const WNDPROC procedure = making_a_window ? nullptr : ClassProcedure(window);
  if (message == WM_NCDESTROY) DropPosted(window);
  if (procedure == nullptr) return ::DefWindowProcW(window, message, wparam, lparam);
  if (::InSendMessage() != FALSE) TookSent({window, message, wparam, lparam});
  return CallProcedure(procedure, window, message, wparam, lparam);
}

}  // namespace

MakingAWindow::MakingAWindow() { making_a_window = true; }
MakingAWindow::~MakingAWindow() { making_a_window = false; }

WNDPROC ApplicationsProcedure(HWND window, WNDPROC systems) {
  return systems == HostProcedure ? ClassProcedure(window) : systems;
}

WNDPROC SystemsProcedure(HWND window, WNDPROC applications) {
  return applications != nullptr && applications == ClassProcedure(window) ? HostProcedure : applications;
}

ATOM RegisterClassW(const WNDCLASSW* window_class) {
  const bool whole = window_class != nullptr && window_class->lpfnWndProc != nullptr &&
                     window_class->lpszClassName != nullptr && *window_class->lpszClassName != 0;
  if (!whole) return Fail(ERROR_INVALID_PARAMETER, ATOM{0});
  WNDCLASSW with_hosts_procedure = *window_class;
  with_hosts_procedure.lpfnWndProc = HostProcedure;
  Classes& classes = TheClasses();
  const std::lock_guard<std::mutex> lock(classes.mutex);
  const ATOM atom = ::RegisterClassW(&with_hosts_procedure);
  if (atom != 0) classes.procedures[atom] = window_class->lpfnWndProc;
  return atom;
}

}  // namespace host
