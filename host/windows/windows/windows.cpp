// Windows and messages are the system's own. Whatever calls a procedure does so outside of the library's calls.
#include "common/calls/call_procedure.h"
#include "common/calls/errors.h"
#include "common/windows/windows_messages.h"
#include "windows/windows/message_numbers.h"
#include "windows/windows/window_classes.h"

namespace host {
namespace {

using internal::OutsideCalls;

constexpr int kProcedureIndex = -4;
constexpr int kUserDataIndex = -21;
constexpr DWORD kInvalidIndex = 1413;
constexpr DWORD kNoSuchClass = 1407;
constexpr DWORD kClassDoesNotExist = 1411;

bool GoodIndex(HWND window, int index) {
  if (::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, false);
  return index == kProcedureIndex || index == kUserDataIndex || Fail(kInvalidIndex, false);
}

LONG_PTR Shown(HWND window, int index, LONG_PTR value) {
  if (index != kProcedureIndex) return value;
  return reinterpret_cast<LONG_PTR>(ApplicationsProcedure(window, reinterpret_cast<WNDPROC>(value)));
}

}  // namespace

HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HANDLE menu, HINSTANCE instance, LPVOID parameter) {
  if (parent != nullptr && parent != HWND_MESSAGE) return Fail(ERROR_NOT_SUPPORTED, HWND{});
  const OutsideCalls application;
  const MakingAWindow quiet;
  const HWND window = ::CreateWindowExW(ex_style, class_name, title, style, x, y, width, height, parent,
                                        static_cast<HMENU>(menu), instance, parameter);
  if (window == nullptr && GetLastError() == kClassDoesNotExist) SetLastError(kNoSuchClass);  // Wine's word for it
  return window;
}

BOOL DestroyWindow(HWND window) {
  if (::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  const OutsideCalls application;
  return ::DestroyWindow(window);
}

BOOL IsWindow(HWND window) { return ::IsWindow(window); }

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const OutsideCalls application;
  return ::DefWindowProcW(window, message, wparam, lparam);
}

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const OutsideCalls application;
  return ::CallWindowProcW(SystemsProcedure(window, procedure), window, message, wparam, lparam);
}

LONG_PTR GetWindowLongW(HWND window, int index) {
  return GoodIndex(window, index) ? Shown(window, index, ::GetWindowLongPtrW(window, index)) : 0;
}

LONG_PTR SetWindowLongW(HWND window, int index, LONG_PTR value) {
  if (!GoodIndex(window, index)) return 0;
  if (index == kProcedureIndex) {
    value = reinterpret_cast<LONG_PTR>(SystemsProcedure(window, reinterpret_cast<WNDPROC>(value)));
  }
  return Shown(window, index, ::SetWindowLongPtrW(window, index, value));
}

DWORD GetWindowThreadProcessId(HWND window, LPDWORD process) { return ::GetWindowThreadProcessId(window, process); }

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  return HasNumber(message) ? PostNumbered({window, message, wparam, lparam})
                            : ::PostMessageW(window, message, wparam, lparam);
}

LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (::IsWindow(window) == FALSE) return Fail(ERROR_INVALID_WINDOW_HANDLE, LRESULT{0});
  const OutsideCalls application;
  if (::GetWindowThreadProcessId(window, nullptr) == ::GetCurrentThreadId()) {
    return ::SendMessageW(window, message, wparam, lparam);
  }
  const SentNumber number({window, message, wparam, lparam});
  return ::SendMessageW(window, message, wparam, lparam);
}

BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last) {
  const OutsideCalls application;
  const BOOL got = ::GetMessageW(message, window, first, last);
  if (got != -1) TookPosted({message->hwnd, message->message, message->wParam, message->lParam});
  return got;
}

BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
  const OutsideCalls application;
  const BOOL found = ::PeekMessageW(message, window, first, last, remove);
  const bool taken = found != FALSE && (remove & PM_REMOVE) != 0;
  if (taken) TookPosted({message->hwnd, message->message, message->wParam, message->lParam});
  return found;
}

LRESULT DispatchMessageW(const MSG* message) {
  const OutsideCalls application;
  return ::DispatchMessageW(message);
}

void PostQuitMessage(int code) { ::PostQuitMessage(code); }

BOOL InSendMessage() { return ::InSendMessage(); }

}  // namespace host
