// The instrument's events arrive as messages on the application's window; the library watches that window's procedure.
#ifndef QXCM_API_EVENT_WINDOW_H
#define QXCM_API_EVENT_WINDOW_H

#include "platform/windows_api.h"

namespace qxcm {

/// Process-wide. Install and Remove are called under the lifecycle lock.
namespace event_window {

/// Called on the window's thread for each event: the event mask and its detail.
using Handler = void (*)(DWORD mask, LPARAM detail);

/// Asks the system library for the window and its event message, and puts the library's procedure before the window's
/// own. True when it stands already; false when there is no such window or its message number is below 1024.
bool Install(Handler handler);

/// Puts the window's own procedure back. Nothing to do when it stands.
void Remove();

}  // namespace event_window
}  // namespace qxcm

#endif
