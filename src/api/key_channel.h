// Key presses on the instrument: another process announces them, one thread here hands them to every open service.
#ifndef QXCM_API_KEY_CHANNEL_H
#define QXCM_API_KEY_CHANNEL_H

#include <cstdint>

#include "platform/event.h"
#include "platform/thread.h"

namespace qxcm {

class SharedBlock;

/// The process-wide key thread. Start and Stop are called under the lifecycle lock.
class KeyChannel {
 public:
  /// Called on the key thread for each announced key.
  using Handler = void (*)(std::uint32_t code);

  explicit KeyChannel(Handler handler) : handler_(handler) {}

  /// Starts the thread unless it runs. A key announced before is delivered at once. When the platform has no thread or
  /// no named objects to give, keys are not reported; nothing else suffers.
  void Start();
  /// Ends the thread and waits for it. It takes no lock that the caller may hold.
  void Stop();

 private:
  void Run();
  void DeliverKeys();
  void DeliverKey(Event& announced, SharedBlock& block);

  const Handler handler_;
  Event stop_;
  Thread thread_;
};

}  // namespace qxcm

#endif
