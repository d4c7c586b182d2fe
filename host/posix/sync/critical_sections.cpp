// Critical sections: the process's own re-entrant locks.
#include <mutex>
#include <new>

#include "common/sync/sync.h"

namespace host {
namespace {

using Lock = std::recursive_mutex;
static_assert(sizeof(Lock) <= sizeof(CRITICAL_SECTION) && alignof(Lock) <= alignof(CRITICAL_SECTION));

Lock& LockOf(LPCRITICAL_SECTION section) { return *std::launder(reinterpret_cast<Lock*>(section->storage)); }

}  // namespace

void InitializeCriticalSection(LPCRITICAL_SECTION section) { new (section->storage) Lock; }

void DeleteCriticalSection(LPCRITICAL_SECTION section) { LockOf(section).~Lock(); }

void EnterCriticalSection(LPCRITICAL_SECTION section) { LockOf(section).lock(); }

BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section) { return LockOf(section).try_lock() ? TRUE : FALSE; }

void LeaveCriticalSection(LPCRITICAL_SECTION section) { LockOf(section).unlock(); }

}  // namespace host
