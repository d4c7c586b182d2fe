// The threads that the host has made: which are the library's, and which have never been resumed.
#ifndef QXHOST_WINDOWS_SYNC_THREAD_TABLE_H
#define QXHOST_WINDOWS_SYNC_THREAD_TABLE_H

#include <windows.h>

namespace host {

// Any thread, as all here. The last error stays as it is.

/// A thread has just been made: the library's inside one of its calls.
void NoteThread(HANDLE thread, bool suspended);
void ForgetThreadHandle(HANDLE thread);

/// The thread runs from here on, or ends. False when it was not waiting to be resumed for the first time.
bool TakeSuspended(HANDLE thread);

}  // namespace host

#endif
