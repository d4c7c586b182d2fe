// COREDLL: threads, events, mutexes, waits, shared memory and handles, as the library calls them.
//
// Critical sections cannot fail, so no fault reaches them; GetLastError and SetLastError (errors.cpp) must not be
// disturbed by one.
#include "common/sync/sync.h"

#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/calls/coredll_call.h"
#include "common/kernel/handles.h"
#include "common/kernel/shared_memory.h"
#include "common/sync/threads.h"

using host::Buffer;
using host::CoreDllCall;
using host::FailsWith;
using host::kUnlisted;
using host::ListedOn;

extern "C" {

BOOL COREDLL(CloseHandle)(HANDLE object) {
  return CoreDllCall("CloseHandle", ListedOn(object), host::CloseHandle, object);
}

HANDLE COREDLL(CreateThread)(LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start,
                             LPVOID argument, DWORD flags, LPDWORD id) {
  return CoreDllCall("CreateThread", kUnlisted, host::CreateThread, security, stack, start, Buffer(argument), flags,
                     id);
}

DWORD COREDLL(ResumeThread)(HANDLE thread) {
  return CoreDllCall("ResumeThread", kUnlisted, FailsWith::kMinusOne, host::ResumeThread, thread);
}

BOOL COREDLL(TerminateThread)(HANDLE thread, DWORD code) {
  return CoreDllCall("TerminateThread", kUnlisted, host::TerminateThread, thread, code);
}

BOOL COREDLL(GetExitCodeThread)(HANDLE thread, LPDWORD code) {
  return CoreDllCall("GetExitCodeThread", kUnlisted, host::GetExitCodeThread, thread, code);
}

DWORD COREDLL(GetCurrentThreadId)(void) {
  return CoreDllCall("GetCurrentThreadId", kUnlisted, host::GetCurrentThreadId);
}

DWORD COREDLL(GetCurrentProcessId)(void) {
  return CoreDllCall("GetCurrentProcessId", kUnlisted, host::GetCurrentProcessId);
}

void COREDLL(Sleep)(DWORD milliseconds) { CoreDllCall("Sleep", kUnlisted, host::Sleep, milliseconds); }

DWORD COREDLL(GetTickCount)(void) { return CoreDllCall("GetTickCount", kUnlisted, host::GetTickCount); }

HANDLE COREDLL(CreateEventW)(LPSECURITY_ATTRIBUTES security, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
  return CoreDllCall("CreateEventW", kUnlisted, host::CreateEventW, security, manual_reset, initial_state, name);
}

BOOL COREDLL(EventModify)(HANDLE event, DWORD function) {
  return CoreDllCall("EventModify", kUnlisted, host::EventModify, event, function);
}

HANDLE COREDLL(CreateMutexW)(LPSECURITY_ATTRIBUTES security, BOOL initial_owner, LPCWSTR name) {
  return CoreDllCall("CreateMutexW", kUnlisted, host::CreateMutexW, security, initial_owner, name);
}

BOOL COREDLL(ReleaseMutex)(HANDLE mutex) { return CoreDllCall("ReleaseMutex", kUnlisted, host::ReleaseMutex, mutex); }

DWORD COREDLL(WaitForSingleObject)(HANDLE object, DWORD milliseconds) {
  return CoreDllCall("WaitForSingleObject", kUnlisted, FailsWith::kMinusOne, host::WaitForSingleObject, object,
                     milliseconds);
}

DWORD COREDLL(WaitForMultipleObjects)(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds) {
  return CoreDllCall("WaitForMultipleObjects", kUnlisted, FailsWith::kMinusOne, host::WaitForMultipleObjects, count,
                     objects, all, milliseconds);
}

DWORD COREDLL(MsgWaitForMultipleObjectsEx)(DWORD count, const HANDLE* objects, DWORD milliseconds, DWORD wake_mask,
                                           DWORD flags) {
  return CoreDllCall("MsgWaitForMultipleObjectsEx", kUnlisted, FailsWith::kMinusOne, host::MsgWaitForMultipleObjectsEx,
                     count, objects, milliseconds, wake_mask, flags);
}

void COREDLL(InitializeCriticalSection)(LPCRITICAL_SECTION section) { host::InitializeCriticalSection(section); }
void COREDLL(DeleteCriticalSection)(LPCRITICAL_SECTION section) { host::DeleteCriticalSection(section); }
void COREDLL(EnterCriticalSection)(LPCRITICAL_SECTION section) { host::EnterCriticalSection(section); }
BOOL COREDLL(TryEnterCriticalSection)(LPCRITICAL_SECTION section) { return host::TryEnterCriticalSection(section); }
void COREDLL(LeaveCriticalSection)(LPCRITICAL_SECTION section) { host::LeaveCriticalSection(section); }

HANDLE COREDLL(CreateFileMappingW)(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD size_high,
                                   DWORD size_low, LPCWSTR name) {
  return CoreDllCall("CreateFileMappingW", kUnlisted, host::CreateFileMappingW, file, security, protect, size_high,
                     size_low, name);
}

LPVOID COREDLL(MapViewOfFile)(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low, SIZE_T bytes) {
  return CoreDllCall("MapViewOfFile", kUnlisted, host::MapViewOfFile, mapping, access, offset_high, offset_low, bytes);
}

BOOL COREDLL(UnmapViewOfFile)(LPCVOID view) {
  return CoreDllCall("UnmapViewOfFile", kUnlisted, host::UnmapViewOfFile, view);
}

}  // extern "C"
