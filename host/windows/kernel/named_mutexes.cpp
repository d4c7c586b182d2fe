#include "windows/kernel/named_mutexes.h"

#include <winternl.h>

#include <map>
#include <mutex>
#include <set>

#include "common/calls/calls.h"
#include "common/calls/last_error.h"

// Of ntdll.dll; no header has it.
extern "C" NTSTATUS NTAPI NtQueryMutant(HANDLE mutex, int information_class, void* information, ULONG size,
                                        ULONG* returned);

namespace host {
namespace {

// Who has taken a mutex, as far as this process did it.
struct Owner {
  DWORD thread = 0;  // 0: nobody here
  unsigned count = 0;
  bool librarys = false;
};

struct KnownMutex {
  std::set<HANDLE> handles;  // all that are open
  Owner owner;
};

struct KnownMutexes {
  std::mutex mutex;
  std::map<WideString, KnownMutex> by_name;                          // guarded by mutex
  std::map<HANDLE, std::map<WideString, KnownMutex>::iterator> all;  // guarded by mutex
};

KnownMutexes& Known() {
  static auto* known = new KnownMutexes;  // threads may outlive the end of main
  return *known;
}

Owner ThisThread() { return {::GetCurrentThreadId(), 1, InLibraryCall()}; }

bool IsFree(HANDLE mutex) {
  struct {
    LONG count;  // 1: free
    BOOLEAN owned_by_caller;
    BOOLEAN abandoned;
  } state = {};
  constexpr int kBasicInformation = 0;
  const NTSTATUS status = NtQueryMutant(mutex, kBasicInformation, &state, sizeof state, nullptr);
  return status == 0 && state.count > 0;
}

bool Lives(DWORD thread) {
  const HANDLE handle = ::OpenThread(SYNCHRONIZE, FALSE, thread);
  if (handle == nullptr) return false;
  const bool lives = ::WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
  ::CloseHandle(handle);
  return lives;
}

NamedMutexState::Holder HolderOf(const KnownMutex& known) {
  if (IsFree(*known.handles.begin())) return NamedMutexState::Holder::kFree;
  const Owner& owner = known.owner;
  const bool librarys = owner.thread != 0 && owner.librarys && Lives(owner.thread);
  return librarys ? NamedMutexState::Holder::kLibrary : NamedMutexState::Holder::kOther;
}

// Calls `change` with the mutex behind the handle, when it is a known one.
template <class Change>
void WithMutex(HANDLE mutex, Change change) {
  const KeepLastError keep;
  KnownMutexes& known = Known();
  const std::lock_guard<std::mutex> lock(known.mutex);
  const auto found = known.all.find(mutex);
  if (found != known.all.end()) change(found->second->second);
}

}  // namespace

void NoteMutexHandle(HANDLE mutex, WideView name, bool owned) {
  if (mutex == nullptr) return;
  ForgetMutexHandle(mutex);  // closed by someone else, and used again
  const KeepLastError keep;
  KnownMutexes& known = Known();
  const std::lock_guard<std::mutex> lock(known.mutex);
  const auto entry = known.by_name.try_emplace(WideString(name)).first;
  entry->second.handles.insert(mutex);
  if (owned) entry->second.owner = ThisThread();
  known.all[mutex] = entry;
}

void ForgetMutexHandle(HANDLE mutex) {
  const KeepLastError keep;
  KnownMutexes& known = Known();
  const std::lock_guard<std::mutex> lock(known.mutex);
  const auto found = known.all.find(mutex);
  if (found == known.all.end()) return;
  const auto entry = found->second;
  known.all.erase(found);
  entry->second.handles.erase(mutex);
  if (entry->second.handles.empty()) known.by_name.erase(entry);
}

// A thread takes a mutex of its own again without a change of who holds it.
void NoteTaken(HANDLE mutex) {
  WithMutex(mutex, [](KnownMutex& known) {
    if (known.owner.thread == ::GetCurrentThreadId()) {
      ++known.owner.count;
    } else {
      known.owner = ThisThread();
    }
  });
}

void NoteReleased(HANDLE mutex) {
  WithMutex(mutex, [](KnownMutex& known) {
    if (known.owner.thread == ::GetCurrentThreadId() && --known.owner.count == 0) known.owner = {};
  });
}

std::vector<NamedMutexState> NotedMutexes() {
  std::vector<NamedMutexState> states;
  KnownMutexes& known = Known();
  const std::lock_guard<std::mutex> lock(known.mutex);
  for (const auto& [name, mutex] : known.by_name) states.push_back({WideToUtf8(name), HolderOf(mutex)});
  return states;
}

}  // namespace host
