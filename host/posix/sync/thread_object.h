// A thread made by CreateThread.
#ifndef QXHOST_POSIX_SYNC_THREAD_OBJECT_H
#define QXHOST_POSIX_SYNC_THREAD_OBJECT_H

#include <pthread.h>
#include <windows.h>

#include <memory>

#include "posix/sync/waits.h"

namespace host {

class Thread final : public Waitable {
 public:
  Thread(LPTHREAD_START_ROUTINE start, LPVOID argument, bool suspended);
  ~Thread() override;

  /// Makes the thread, which keeps its object alive. False when there is no room for one.
  static bool Start(const std::shared_ptr<Thread>& thread);

  bool Ready(const ThreadState&) override { return ended_; }

  /// The suspend count before.
  DWORD Resume();
  /// The suspended thread ends with this result instead of beginning; false when it has been resumed.
  bool EndUnlessResumed(DWORD result);
  /// Waits until the new thread has told its number.
  DWORD Id() const;
  DWORD ExitCode() const;

  /// Called by the thread itself, as its last step: its handle becomes signalled.
  void End();

 private:
  static void* Run(void* pointer);

  const LPTHREAD_START_ROUTINE start_;
  const LPVOID argument_;
  const bool librarys_;  // made in one of the library's calls
  FutexWord suspended_;  // kRunning, kSuspended or kEndAtOnce
  FutexWord id_{0};
  pthread_t thread_{};
  bool started_ = false;
  DWORD result_ = 0;    // written before ended_
  bool ended_ = false;  // guarded by the kernel lock
};

}  // namespace host

#endif
