// Command texts on their way from the link's reader thread to the dispatcher, first in, first out.
#ifndef QXCM_PROTOCOL_COMMAND_QUEUE_H
#define QXCM_PROTOCOL_COMMAND_QUEUE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/event.h"
#include "platform/lock.h"

namespace qxcm {

/// A bounded ring of texts; any thread. The message event is set while it holds a text.
class CommandQueue {
 public:
  static constexpr std::size_t kMostTexts = 4096;
  static constexpr std::size_t kMostBytes = 1 << 20;

  /// Appends a text. A text beyond either limit is dropped, like received bytes that find the link's queue full.
  void Push(std::string_view text);
  /// Replaces `text` with the oldest one; false when there is none. The pop that empties the queue resets the event.
  bool Pop(std::string& text);

  std::size_t size();
  const Event& message_event() const { return message_event_; }

 private:
  void Grow(std::size_t needed) QXCM_REQUIRES(lock_);
  void CopyIn(const char* bytes, std::size_t count) QXCM_REQUIRES(lock_);
  void CopyOut(char* bytes, std::size_t count) QXCM_REQUIRES(lock_);

  Lock lock_;
  // Each text stands in the ring as its length and its bytes; both may wrap round the end.
  std::vector<char> ring_ QXCM_GUARDED_BY(lock_);
  std::size_t front_ QXCM_GUARDED_BY(lock_) = 0;
  std::size_t used_ QXCM_GUARDED_BY(lock_) = 0;
  std::size_t texts_ QXCM_GUARDED_BY(lock_) = 0;
  Event message_event_;
};

}  // namespace qxcm

#endif
