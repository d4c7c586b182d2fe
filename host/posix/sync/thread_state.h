// What the kernel keeps for each thread that calls it, whoever made the thread.
#ifndef QXHOST_POSIX_SYNC_THREAD_STATE_H
#define QXHOST_POSIX_SYNC_THREAD_STATE_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "posix/sync/waits.h"

namespace host {

class MessageQueue;
class Mutex;
class Thread;

struct ThreadState {
  ThreadState();

  const DWORD id;
  Waiter waiter{*this};
  std::vector<Mutex*> owned;            ///< unnamed mutexes; guarded by the kernel lock
  bool took_named_mutex = false;        ///< once true, it may own some
  std::shared_ptr<MessageQueue> queue;  ///< null until the thread uses windows
  std::shared_ptr<Thread> thread;       ///< null when the thread was not made by CreateThread
  unsigned receiving = 0;               ///< messages of other threads being handled now
  std::uint64_t message_number = 0;     ///< of the message being handled, see MessageNumber
};

/// The calling thread's state. It is given up, with all that the thread owns, after the thread's thread-local objects
/// have been destroyed.
ThreadState& CurrentThread();

}  // namespace host

#endif
