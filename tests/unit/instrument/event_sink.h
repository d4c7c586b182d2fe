// An application's window that receives the instrument's events.
#ifndef QXTEST_UNIT_INSTRUMENT_EVENT_SINK_H
#define QXTEST_UNIT_INSTRUMENT_EVENT_SINK_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "instrument/event_window.h"
#include "support/test_application.h"

namespace qxtest {

/// Names its window to the system library, and takes it back at the end.
class EventSink {
 public:
  /// `handle` is called on the window's thread for each event; the masks are kept anyhow.
  explicit EventSink(std::function<void(std::uint32_t)> handle = nullptr)
      : window_([handle](UINT, WPARAM mask, LPARAM) {
          if (handle) handle(static_cast<std::uint32_t>(mask));
          return LRESULT{0};
        }) {
    host::instrument::SetEventWindow(window_.handle(), kEventMessage);
    HWND window = nullptr;
    UINT message = 0;
    QxSystemGetEventWindow(&window, &message);  // the library asks for it like this
  }
  EventSink(const EventSink&) = delete;
  EventSink& operator=(const EventSink&) = delete;
  ~EventSink() { host::instrument::ResetEventWindow(); }

  /// The masks in order, once there are so many of them.
  std::vector<std::uint32_t> Masks(std::size_t count) {
    std::vector<std::uint32_t> masks;
    for (const SeenMessage& seen : window_.WaitForSeen(count)) masks.push_back(static_cast<std::uint32_t>(seen.wparam));
    return masks;
  }
  std::vector<SeenMessage> seen() { return window_.seen(); }

 private:
  TestWindow window_;
};

}  // namespace qxtest

#endif
