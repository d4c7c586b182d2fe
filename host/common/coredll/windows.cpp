// COREDLL: windows and their messages, as the library calls them.
#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/calls/coredll_call.h"
#include "common/windows/windows_messages.h"

using host::Buffer;
using host::CoreDllCall;
using host::FailsWith;
using host::kUnlisted;

extern "C" {

ATOM COREDLL(RegisterClassW)(const WNDCLASSW* window_class) {
  return CoreDllCall("RegisterClassW", kUnlisted, host::RegisterClassW, window_class);
}

// The class may be an atom instead of a text.
HWND COREDLL(CreateWindowExW)(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y, int width,
                              int height, HWND parent, HANDLE menu, HINSTANCE instance, LPVOID parameter) {
  return CoreDllCall("CreateWindowExW", kUnlisted, host::CreateWindowExW, ex_style, Buffer(class_name), title, style, x,
                     y, width, height, parent, menu, instance, Buffer(parameter));
}

BOOL COREDLL(DestroyWindow)(HWND window) {
  return CoreDllCall("DestroyWindow", kUnlisted, host::DestroyWindow, window);
}

BOOL COREDLL(IsWindow)(HWND window) { return CoreDllCall("IsWindow", kUnlisted, host::IsWindow, window); }

LRESULT COREDLL(DefWindowProcW)(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CoreDllCall("DefWindowProcW", kUnlisted, host::DefWindowProcW, window, message, wparam, lparam);
}

LRESULT COREDLL(CallWindowProcW)(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CoreDllCall("CallWindowProcW", kUnlisted, host::CallWindowProcW, procedure, window, message, wparam, lparam);
}

LONG_PTR COREDLL(GetWindowLongW)(HWND window, int index) {
  return CoreDllCall("GetWindowLongW", kUnlisted, host::GetWindowLongW, window, index);
}

LONG_PTR COREDLL(SetWindowLongW)(HWND window, int index, LONG_PTR value) {
  return CoreDllCall("SetWindowLongW", kUnlisted, host::SetWindowLongW, window, index, value);
}

DWORD COREDLL(GetWindowThreadProcessId)(HWND window, LPDWORD process) {
  return CoreDllCall("GetWindowThreadProcessId", kUnlisted, host::GetWindowThreadProcessId, window, process);
}

BOOL COREDLL(PostMessageW)(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CoreDllCall("PostMessageW", kUnlisted, host::PostMessageW, window, message, wparam, lparam);
}

BOOL COREDLL(InSendMessage)(void) { return CoreDllCall("InSendMessage", kUnlisted, host::InSendMessage); }

LRESULT COREDLL(SendMessageW)(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return CoreDllCall("SendMessageW", kUnlisted, host::SendMessageW, window, message, wparam, lparam);
}

BOOL COREDLL(GetMessageW)(LPMSG message, HWND window, UINT first, UINT last) {
  return CoreDllCall("GetMessageW", kUnlisted, FailsWith::kMinusOne, host::GetMessageW, message, window, first, last);
}

BOOL COREDLL(PeekMessageW)(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
  return CoreDllCall("PeekMessageW", kUnlisted, host::PeekMessageW, message, window, first, last, remove);
}

LRESULT COREDLL(DispatchMessageW)(const MSG* message) {
  return CoreDllCall("DispatchMessageW", kUnlisted, host::DispatchMessageW, message);
}

void COREDLL(PostQuitMessage)(int code) { CoreDllCall("PostQuitMessage", kUnlisted, host::PostQuitMessage, code); }

}  // extern "C"
