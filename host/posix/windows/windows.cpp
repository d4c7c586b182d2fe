// Windows: their classes, their life and what is set in them.
#include "common/calls/call_procedure.h"
#include "common/calls/errors.h"
#include "common/sync/threads.h"
#include "common/windows/windows_messages.h"
#include "posix/sync/thread_state.h"
#include "posix/windows/window_table.h"

namespace host {
namespace {

constexpr DWORD kClassExists = 1410;
constexpr DWORD kNoSuchClass = 1407;
constexpr DWORD kInvalidIndex = 1413;
constexpr int kProcedureIndex = -4;
constexpr int kUserDataIndex = -21;

// Reads the value at an index of a window and, when there is a new one, replaces it.
LONG_PTR WindowLong(HWND handle, int index, const LONG_PTR* replacement) {
  KernelLock lock;
  Window* window = FindWindowByHandle(handle);
  if (window == nullptr) return Fail(ERROR_INVALID_WINDOW_HANDLE, LONG_PTR{0});
  if (index == kProcedureIndex) {
    const auto previous = reinterpret_cast<LONG_PTR>(window->procedure);
    if (replacement != nullptr) window->procedure = reinterpret_cast<WNDPROC>(*replacement);
    return previous;
  }
  if (index != kUserDataIndex) return Fail(kInvalidIndex, LONG_PTR{0});
  const LONG_PTR previous = window->user_data;
  if (replacement != nullptr) window->user_data = *replacement;
  return previous;
}

// The procedure that takes WM_DESTROY, or null with the last error set.
WNDPROC BeginDestroying(HWND handle) {
  KernelLock lock;
  Window* window = FindWindowByHandle(handle);
  if (window == nullptr || window->going) return Fail(ERROR_INVALID_WINDOW_HANDLE, WNDPROC{});
  if (window->queue != CurrentThread().queue) return Fail(ERROR_ACCESS_DENIED, WNDPROC{});
  window->going = true;
  return window->procedure;
}

}  // namespace

ATOM RegisterClassW(const WNDCLASSW* window_class) {
  const bool whole = window_class != nullptr && window_class->lpfnWndProc != nullptr &&
                     window_class->lpszClassName != nullptr && *window_class->lpszClassName != 0;
  if (!whole) return Fail(ERROR_INVALID_PARAMETER, ATOM{0});
  KernelLock lock;
  const ATOM atom = AddClass(window_class->lpszClassName, window_class->lpfnWndProc);
  return atom != 0 ? atom : Fail(kClassExists, ATOM{0});
}

HWND CreateWindowExW(DWORD, LPCWSTR class_name, LPCWSTR, DWORD, int, int, int, int, HWND parent, HANDLE, HINSTANCE,
                     LPVOID) {
  if (parent != nullptr && parent != HWND_MESSAGE) return Fail(ERROR_NOT_SUPPORTED, HWND{});
  Window window;
  window.queue = QueueOf(CurrentThread());
  KernelLock lock;
  window.procedure = FindClass(class_name);
  return window.procedure != nullptr ? AddWindow(std::move(window)) : Fail(kNoSuchClass, HWND{});
}

BOOL DestroyWindow(HWND handle) {
  const WNDPROC procedure = BeginDestroying(handle);
  if (procedure == nullptr) return FALSE;
  CallProcedure(procedure, handle, WM_DESTROY, 0, 0);
  KernelLock lock;
  RemoveWindow(handle);
  CurrentThread().queue->Drop(lock, handle);
  return TRUE;
}

BOOL IsWindow(HWND handle) {
  KernelLock lock;
  return FindWindowByHandle(handle) != nullptr ? TRUE : FALSE;
}

LRESULT DefWindowProcW(HWND, UINT, WPARAM, LPARAM) { return 0; }

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CallProcedure(procedure, window, message, wparam, lparam);
}

LONG_PTR GetWindowLongW(HWND window, int index) { return WindowLong(window, index, nullptr); }

LONG_PTR SetWindowLongW(HWND window, int index, LONG_PTR value) { return WindowLong(window, index, &value); }

DWORD GetWindowThreadProcessId(HWND handle, LPDWORD process) {
  KernelLock lock;
  const Window* window = FindWindowByHandle(handle);
  if (window == nullptr) return Fail(ERROR_INVALID_WINDOW_HANDLE, DWORD{0});
  if (process != nullptr) *process = host::GetCurrentProcessId();
  return window->queue->thread_id();
}

}  // namespace host
