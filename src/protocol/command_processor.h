// The dispatcher of one open service: takes queued command texts, calls their handlers, closes each with an ACK.
#ifndef QXCM_PROTOCOL_COMMAND_PROCESSOR_H
#define QXCM_PROTOCOL_COMMAND_PROCESSOR_H

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/event.h"
#include "platform/thread.h"
#include "protocol/command_queue.h"
#include "protocol/field_map.h"
#include "protocol/reply.h"
#include "protocol/service.h"

namespace qxcm {

/// Handlers run one at a time, on the dispatcher thread. Owned by the CommManager, which is its service.
class CommandProcessor {
 public:
  explicit CommandProcessor(Service& service) : service_(service) {}

  /// Starts the dispatcher thread; false when the platform has none to give.
  bool Start();
  /// Tells the dispatcher to end after the command in hand.
  void RequestStop() { stop_.Set(); }
  /// Waits for the dispatcher thread to end, so many milliseconds at most, while messages sent to the calling thread's
  /// windows are handled; whether it has ended.
  bool JoinFor(DWORD milliseconds) { return thread_.JoinLettingSentMessagesThrough(milliseconds); }
  bool finished() const { return thread_.finished(); }

  /// Lets the tools commands through, for as long as the service is open.
  void SetToolsMode() { tools_mode_.store(true, std::memory_order_relaxed); }

  /// The service is being closed: a handler with much left to do ends.
  bool stopping() const { return stop_.WasSet(); }
  /// Set when the service is being closed: ends the waits of a handler.
  const Event& stop_event() const { return stop_; }
  /// For handlers that send many replies, before each: waits until the controller has read enough of those before.
  /// False when the service is being closed. Not to be called with a lock held.
  bool WaitForRoom() {
    service_.WaitForRoom(stop_);
    return !stopping();
  }

  CommandQueue& commands() { return commands_; }
  Service& service() { return service_; }

  /// Sends a handler's reply. Several may be sent for one command.
  void SendReply(const Reply& reply) { service_.SendReply(reply.text()); }
  void PostNotification(std::uint32_t code, LPARAM detail) { service_.PostNotification(code, detail); }

  /// Handles the oldest queued command, if there is one. Called by the dispatcher thread.
  void HandleOne();

 private:
  void Run();
  std::string_view Dispatch();

  Service& service_;
  std::atomic<bool> tools_mode_{false};
  CommandQueue commands_;
  Event stop_;
  Thread thread_;
  // The command in hand; the dispatcher thread's own, kept so that their memory is used again.
  std::string text_;
  FieldMap fields_;
};

}  // namespace qxcm

#endif
