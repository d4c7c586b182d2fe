// The host's procedure in front of an application's, for windows of the classes that are registered here.
#ifndef QXHOST_WINDOWS_WINDOWS_WINDOW_CLASSES_H
#define QXHOST_WINDOWS_WINDOWS_WINDOW_CLASSES_H

#include <windows.h>

namespace host {

/// While it lives, windows that the calling thread makes send their procedure nothing.
class MakingAWindow {
 public:
  MakingAWindow();
  ~MakingAWindow();
  MakingAWindow(const MakingAWindow&) = delete;
  MakingAWindow& operator=(const MakingAWindow&) = delete;
};

/// A window's procedure as the application and the library see it, for the one that the system has; and back.
WNDPROC ApplicationsProcedure(HWND window, WNDPROC systems);
WNDPROC SystemsProcedure(HWND window, WNDPROC applications);

}  // namespace host

#endif
