// The event window of the system library: where the instrument's events are delivered.
#ifndef QXHOST_INSTRUMENT_EVENT_WINDOW_H
#define QXHOST_INSTRUMENT_EVENT_WINDOW_H

#include <windows.h>

#include <cstdint>

extern "C" {

/// QxSystem ordinal 63. Hands back the application's window and the number of the message that carries the events.
/// Result 0; -1, with both left as they are, when the application has named no window.
std::int32_t WINAPI QxSystemGetEventWindow(HWND* window, UINT* message);

}  // extern "C"

namespace host::instrument {

/// Events, as the bits of a mask.
constexpr std::uint32_t kDistanceReady = 0x1;
constexpr std::uint32_t kMeasurementEnded = 0x4;
constexpr std::uint32_t kAngleEvent = 0x8;
constexpr std::uint32_t kTiltEvent = 0x40;

/// The application names its window; null for none. Counts from the next call of ordinal 63. Any thread.
void SetEventWindow(HWND window, UINT message);

/// Sends the events of this mask to the window last handed out and returns when they have been handled; false when none
/// has been handed out or it is gone. Any thread that does not keep the window's thread waiting.
bool DeliverEvents(std::uint32_t mask);

/// Whether the calling thread is the one that handles the events.
bool IsEventWindowThread();

/// The message number last handed out; 0 when none has been.
UINT EventMessage();

/// Forgets both windows.
void ResetEventWindow();

}  // namespace host::instrument

#endif
