// Part of <windows.h>: programs to start, and calls of a loaded library found by name or ordinal.
#ifndef QXHOST_WINDOWS_PROCESSES_H
#define QXHOST_WINDOWS_PROCESSES_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct _STARTUPINFOW STARTUPINFOW, *LPSTARTUPINFOW; /* never looked at: null on Windows CE */
typedef struct _PROCESS_INFORMATION {
  HANDLE hProcess;
  HANDLE hThread;
  DWORD dwProcessId;
  DWORD dwThreadId;
} PROCESS_INFORMATION, *LPPROCESS_INFORMATION;

BOOL WINAPI CreateProcessW(LPCWSTR program, LPWSTR command_line, LPSECURITY_ATTRIBUTES process_security,
                           LPSECURITY_ATTRIBUTES thread_security, BOOL inherit, DWORD flags, LPVOID environment,
                           LPCWSTR folder, LPSTARTUPINFOW start, LPPROCESS_INFORMATION process);

typedef HINSTANCE HMODULE;
typedef intptr_t(WINAPI* FARPROC)(void);
#define MAKEINTRESOURCEW(number) ((LPCWSTR)(uintptr_t)(WORD)(number))
HMODULE WINAPI GetModuleHandleW(LPCWSTR name);

#ifdef __cplusplus
}
#endif

#endif
