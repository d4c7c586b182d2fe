// The windows of this process and their classes.
#ifndef QXHOST_POSIX_WINDOWS_WINDOW_TABLE_H
#define QXHOST_POSIX_WINDOWS_WINDOW_TABLE_H

#include <windows.h>

#include <memory>

#include "posix/windows/message_queue.h"

namespace host {

struct Window {
  WNDPROC procedure = nullptr;
  LONG_PTR user_data = 0;
  std::shared_ptr<MessageQueue> queue;  ///< of the thread it belongs to
  bool going = false;                   ///< its WM_DESTROY is being handled
};

// All of these are called with the kernel lock held.

/// The window, or null; valid while the lock is held.
Window* FindWindowByHandle(HWND handle);
HWND AddWindow(Window window);
void RemoveWindow(HWND handle);
void RemoveWindowsOf(const MessageQueue& queue);

/// 0 when the class is there already.
ATOM AddClass(LPCWSTR name, WNDPROC procedure);
/// By name, or by an atom in place of one; null when there is no such class.
WNDPROC FindClass(LPCWSTR name);

}  // namespace host

#endif
