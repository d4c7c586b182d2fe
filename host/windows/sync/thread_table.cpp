#include "windows/sync/thread_table.h"

#include <algorithm>
#include <mutex>
#include <set>
#include <vector>

#include "common/calls/calls.h"
#include "common/calls/last_error.h"
#include "common/kernel/handles.h"

namespace host {
namespace {

struct ThreadTable {
  std::mutex mutex;
  std::set<HANDLE> suspended;    // as they were made; guarded by mutex
  std::vector<HANDLE> librarys;  // handles of the table's own, of threads that may have ended; guarded by mutex
};

ThreadTable& Threads() {
  static auto* threads = new ThreadTable;  // threads may outlive the end of main
  return *threads;
}

HANDLE OwnHandle(HANDLE thread) {
  HANDLE own = nullptr;
  const HANDLE process = ::GetCurrentProcess();
  ::DuplicateHandle(process, thread, process, &own, SYNCHRONIZE, FALSE, 0);
  return own;
}

// With the lock held.
void DropEnded(std::vector<HANDLE>* threads) {
  const auto ended = [](HANDLE thread) {
    if (::WaitForSingleObject(thread, 0) == WAIT_TIMEOUT) return false;
    ::CloseHandle(thread);
    return true;
  };
  threads->erase(std::remove_if(threads->begin(), threads->end(), ended), threads->end());
}

}  // namespace

void NoteThread(HANDLE thread, bool suspended) {
  const KeepLastError keep;
  ThreadTable& threads = Threads();
  const std::lock_guard<std::mutex> lock(threads.mutex);
  if (suspended) threads.suspended.insert(thread);
  if (!InLibraryCall()) return;
  DropEnded(&threads.librarys);
  threads.librarys.push_back(OwnHandle(thread));
}

void ForgetThreadHandle(HANDLE thread) { TakeSuspended(thread); }

bool TakeSuspended(HANDLE thread) {
  const KeepLastError keep;
  ThreadTable& threads = Threads();
  const std::lock_guard<std::mutex> lock(threads.mutex);
  return threads.suspended.erase(thread) != 0;
}

std::size_t LibraryThreads() {
  ThreadTable& threads = Threads();
  const std::lock_guard<std::mutex> lock(threads.mutex);
  DropEnded(&threads.librarys);
  return threads.librarys.size();
}

}  // namespace host
