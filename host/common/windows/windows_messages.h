// Message-only windows, their classes and their messages.
//
// A window belongs to the thread that made it and ends with it. Messages sent to it from other threads are handled
// whenever that thread looks for messages, or itself waits for a message that it has sent. No message is sent when a
// window is made; destroying it sends WM_DESTROY. Window handles fit into 32 bits and are not used again soon.
#ifndef QXHOST_COMMON_WINDOWS_WINDOWS_MESSAGES_H
#define QXHOST_COMMON_WINDOWS_WINDOWS_MESSAGES_H

#include <windows.h>

#include <cstddef>
#include <cstdint>

namespace host {

/// Posted messages that a thread can have waiting.
constexpr std::size_t kMostPosted = 10000;

/// 0: last error 87 (no name or procedure) or 1410 (the name exists; case does not matter).
ATOM RegisterClassW(const WNDCLASSW* window_class);

/// `class_name` may be an atom. Null: last error 50 (a parent window) or 1407 (no such class).
HWND CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HANDLE menu, HINSTANCE instance, LPVOID parameter);

/// FALSE: last error 1400 (no window) or 5 (another thread's).
BOOL DestroyWindow(HWND window);

BOOL IsWindow(HWND window);
LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// Index -4 is the window's procedure, -21 its user data. 0: last error 1400, or 1413 (another index).
LONG_PTR GetWindowLongW(HWND window, int index);
/// The same; returns the previous value. Any thread of the process may call it.
LONG_PTR SetWindowLongW(HWND window, int index, LONG_PTR value);

/// The number of the window's thread; 0 with last error 1400.
DWORD GetWindowThreadProcessId(HWND window, LPDWORD process);

/// FALSE: last error 1400 (no window) or 1816 (kMostPosted messages wait already).
BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// Returns what the window's procedure returned. 0 with last error 1400 when there is no such window, or when it has
/// gone before it took the message.
LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

/// Waits for a posted message; FALSE for WM_QUIT, -1 with last error 1400 when `window` is none.
BOOL GetMessageW(LPMSG message, HWND window, UINT first, UINT last);

/// Handles sent messages, then looks for a posted one. With PM_QS_SENDMESSAGE it only handles sent messages.
BOOL PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
LRESULT DispatchMessageW(const MSG* message);
void PostQuitMessage(int code);

/// TRUE while the calling thread handles a message that another thread has sent.
BOOL InSendMessage();

/// The number (see calls.h) that the message taken last by the calling thread got when it was posted to it or sent to
/// it by another thread. Only messages that applications register (0x8000 to 0xBFFF) get one; 0 for all others.
std::uint64_t MessageNumber();

}  // namespace host

#endif
