// Messages that wait for one thread: posted ones in their order, and those that other threads have sent and wait for.
#ifndef QXHOST_POSIX_WINDOWS_MESSAGE_QUEUE_H
#define QXHOST_POSIX_WINDOWS_MESSAGE_QUEUE_H

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "posix/sync/thread_state.h"
#include "posix/sync/waits.h"

namespace host {

/// The number for a message that is being given to a thread; see MessageNumber.
std::uint64_t NumberFor(const MSG& message);

struct PostedMessage {
  MSG message = {};
  std::uint64_t number = 0;
};

/// A message sent from one thread to another. Ready when it has been answered, or will never be.
class SentMessage final : public Waitable {
 public:
  explicit SentMessage(const MSG& call) : call_(call), number_(NumberFor(call)) {}
  bool Ready(const ThreadState&) override { return done_; }

  /// With the kernel lock held; nothing: the window has gone.
  void Answer(KernelLock& lock, std::optional<LRESULT> result);
  /// For the sender, once it is ready.
  std::optional<LRESULT> result() const { return result_; }

  const MSG& call() const { return call_; }
  std::uint64_t number() const { return number_; }

 private:
  const MSG call_;
  const std::uint64_t number_;
  bool done_ = false;  // guarded by the kernel lock
  std::optional<LRESULT> result_;
};

/// Which posted messages a call looks for.
struct MessageFilter {
  HWND window = nullptr;  ///< null: any
  UINT first = 0;
  UINT last = 0;  ///< both 0: any
  bool Matches(const MSG& message) const;
};

/// One thread's messages. All members but EndThread are called with the kernel lock held.
class MessageQueue final : public Waitable {
 public:
  explicit MessageQueue(DWORD thread_id) : thread_id_(thread_id) {}
  DWORD thread_id() const { return thread_id_; }

  /// Ready when there is input as the thread's last call of WakeOn asked for.
  bool Ready(const ThreadState&) override;
  void WakeOn(DWORD mask, bool also_old_input);

  /// False when kMostPosted messages wait already.
  bool Post(KernelLock& lock, const MSG& message);
  void PostQuit(int code);
  /// The first posted message that matches or, when there is none, WM_QUIT. What is there now is no longer new input.
  std::optional<PostedMessage> Look(const MessageFilter& filter, bool remove);

  void Send(KernelLock& lock, std::shared_ptr<SentMessage> message);
  /// The next message sent to the thread, or null.
  std::shared_ptr<SentMessage> TakeSent();

  /// The window has gone: so do its messages. Null: all of the thread's.
  void Drop(KernelLock& lock, HWND window);

  /// The thread ends: so do its windows.
  void EndThread();

 private:
  const DWORD thread_id_;
  std::deque<PostedMessage> posted_;
  std::deque<std::shared_ptr<SentMessage>> sent_;
  std::optional<int> quit_code_;
  bool new_posted_ = false;  // posted since the thread last looked
  DWORD wake_mask_ = 0;
  bool also_old_input_ = false;
};

/// The thread's queue, made at first use.
const std::shared_ptr<MessageQueue>& QueueOf(ThreadState& thread);

/// Waits for any of the objects added to the thread's waiter, or for input; the input's index follows the objects'.
DWORD WaitWithInput(ThreadState& thread, DWORD wake_mask, bool also_old_input, DWORD milliseconds);

}  // namespace host

#endif
