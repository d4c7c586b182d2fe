#include "posix/sync/thread_state.h"

#include <pthread.h>
#include <unistd.h>

#include <system_error>
#include <utility>

#include "posix/kernel/object_namespace.h"
#include "posix/sync/mutexes.h"
#include "posix/sync/thread_object.h"
#include "posix/windows/message_queue.h"

namespace host {
namespace {

thread_local ThreadState* current = nullptr;

void EndThread(void* pointer) {
  auto* state = static_cast<ThreadState*>(pointer);
  if (state->queue != nullptr) state->queue->EndThread();
  AbandonMutexes(*state);
  const auto thread = std::move(state->thread);
  current = nullptr;
  delete state;
  if (thread != nullptr) thread->End();
}

// A key's destructor runs after those of all thread_local objects, which may still use what the thread owns.
pthread_key_t EndOfThreadKey() {
  static const pthread_key_t key = [] {
    pthread_key_t made = 0;
    const int error = pthread_key_create(&made, EndThread);
    if (error != 0) throw std::system_error(error, std::generic_category(), "pthread_key_create");
    return made;
  }();
  return key;
}

}  // namespace

ThreadState::ThreadState() : id(static_cast<DWORD>(gettid())) {}

ThreadState& CurrentThread() {
  if (current == nullptr) {
    current = new ThreadState;
    pthread_setspecific(EndOfThreadKey(), current);
  }
  return *current;
}

}  // namespace host
