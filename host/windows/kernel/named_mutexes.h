// The named mutexes that this process has open, and which of them one of its threads has taken inside a library call.
#ifndef QXHOST_WINDOWS_KERNEL_NAMED_MUTEXES_H
#define QXHOST_WINDOWS_KERNEL_NAMED_MUTEXES_H

#include <windows.h>

#include <vector>

#include "common/kernel/named_objects.h"
#include "common/text/utf.h"

namespace host {

// Any thread, as all here. The last error stays as it is.

/// \param name   as the instrument knows it
/// \param owned  it is new, and the calling thread's
void NoteMutexHandle(HANDLE mutex, WideView name, bool owned);
void ForgetMutexHandle(HANDLE mutex);

/// The calling thread has taken or released what the handle names, if that is one of these mutexes.
void NoteTaken(HANDLE mutex);
void NoteReleased(HANDLE mutex);

std::vector<NamedMutexState> NotedMutexes();

}  // namespace host

#endif
