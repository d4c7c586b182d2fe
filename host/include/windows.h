// The platform's calls as the library uses them, for Linux: a small, contained Windows CE machine and no more.
//
// Types have their Windows meaning; wide text is 16 bits (char16_t). What is not declared here is not offered.
// The calls are implemented in host/posix; calls that differ between Windows CE and desktop Windows (power, window
// procedures, EventModify) are declared by src/platform/windows_api.h, in their CE form, on every host.
#ifndef QXHOST_WINDOWS_H
#define QXHOST_WINDOWS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define WINAPI
#define CALLBACK
#define APIENTRY
#define DECLSPEC_IMPORT

#ifdef __cplusplus
typedef char16_t WCHAR;
#else
typedef uint16_t WCHAR;
#endif
typedef int BOOL;
typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef int INT;
typedef unsigned int UINT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef size_t SIZE_T;
typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef char CHAR;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef BOOL* LPBOOL;
typedef DWORD* LPDWORD;
typedef LONG* PLONG;
typedef void* HANDLE;
typedef struct QxWindow* HWND;
typedef struct QxModule* HINSTANCE;
typedef HINSTANCE HMODULE;
typedef WORD ATOM;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;

#define TRUE 1
#define FALSE 0
#define INVALID_HANDLE_VALUE ((HANDLE)(intptr_t)-1)
#define INFINITE 0xFFFFFFFFu
#ifdef __cplusplus
#define TEXT(literal) u##literal
#endif

// Error codes.
#define ERROR_SUCCESS 0u
#define NO_ERROR 0u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_TOO_MANY_OPEN_FILES 4u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_BAD_FORMAT 11u
#define ERROR_INVALID_DATA 13u
#define ERROR_WRITE_PROTECT 19u
#define ERROR_GEN_FAILURE 31u
#define ERROR_SHARING_VIOLATION 32u
#define ERROR_HANDLE_EOF 38u
#define ERROR_HANDLE_DISK_FULL 39u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_FILE_EXISTS 80u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_DISK_FULL 112u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_INVALID_NAME 123u
#define ERROR_MOD_NOT_FOUND 126u
#define ERROR_PROC_NOT_FOUND 127u
#define ERROR_DIR_NOT_EMPTY 145u
#define ERROR_ALREADY_EXISTS 183u
#define ERROR_FILENAME_EXCED_RANGE 206u
#define ERROR_NOT_OWNER 288u
#define ERROR_OPERATION_ABORTED 995u
#define ERROR_NO_UNICODE_TRANSLATION 1113u
#define ERROR_IO_DEVICE 1117u
#define ERROR_INVALID_WINDOW_HANDLE 1400u
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812u
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813u
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814u
#define ERROR_NOT_ENOUGH_QUOTA 1816u

DWORD WINAPI GetLastError(void);
void WINAPI SetLastError(DWORD error);
BOOL WINAPI CloseHandle(HANDLE object);

// Threads.
typedef DWORD(WINAPI* LPTHREAD_START_ROUTINE)(LPVOID);
typedef struct _SECURITY_ATTRIBUTES {
  DWORD nLength;
  LPVOID lpSecurityDescriptor;
  BOOL bInheritHandle;
} SECURITY_ATTRIBUTES, *LPSECURITY_ATTRIBUTES;
#define CREATE_SUSPENDED 0x00000004u

HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID argument,
                           DWORD flags, LPDWORD id);
DWORD WINAPI ResumeThread(HANDLE thread);
/* Only for a thread that is still suspended as it was made; error 50 otherwise. */
BOOL WINAPI TerminateThread(HANDLE thread, DWORD code);
BOOL WINAPI GetExitCodeThread(HANDLE thread, LPDWORD code);
DWORD WINAPI GetCurrentThreadId(void);
DWORD WINAPI GetCurrentProcessId(void);
void WINAPI Sleep(DWORD milliseconds);
DWORD WINAPI GetTickCount(void);

// Synchronisation.
typedef struct _CRITICAL_SECTION {
  // A recursive lock of the host, made by InitializeCriticalSection and freed by DeleteCriticalSection.
  uint64_t storage[8];
} CRITICAL_SECTION, *LPCRITICAL_SECTION;
void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section);
void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section);
void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section);
BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION section);
void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section);

#define MAXIMUM_WAIT_OBJECTS 64
#define WAIT_OBJECT_0 0u
#define WAIT_ABANDONED 0x00000080u
#define WAIT_ABANDONED_0 0x00000080u
#define WAIT_TIMEOUT 0x00000102u
#define WAIT_FAILED 0xFFFFFFFFu
HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual_reset, BOOL initial_state, LPCWSTR name);
HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initial_owner, LPCWSTR name);
BOOL WINAPI ReleaseMutex(HANDLE mutex);
DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD milliseconds);
DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds);

// Named shared memory. Only page-file backed blocks (file = INVALID_HANDLE_VALUE) of at most 4096 bytes.
#define PAGE_READONLY 0x02u
#define PAGE_READWRITE 0x04u
#define FILE_MAP_WRITE 0x0002u
#define FILE_MAP_READ 0x0004u
#define FILE_MAP_ALL_ACCESS 0x000F001Fu
HANDLE WINAPI CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD size_high,
                                 DWORD size_low, LPCWSTR name);
LPVOID WINAPI MapViewOfFile(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low, SIZE_T bytes);
BOOL WINAPI UnmapViewOfFile(LPCVOID view);

// Devices and serial ports.
typedef struct _OVERLAPPED {
  ULONG_PTR Internal;
  ULONG_PTR InternalHigh;
  DWORD Offset;
  DWORD OffsetHigh;
  HANDLE hEvent;
} OVERLAPPED, *LPOVERLAPPED;
#define GENERIC_READ 0x80000000u
#define GENERIC_WRITE 0x40000000u
#define FILE_SHARE_READ 0x1u
#define FILE_SHARE_WRITE 0x2u
#define CREATE_NEW 1u
#define OPEN_EXISTING 3u
#define FILE_ATTRIBUTE_NORMAL 0x80u
HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                          DWORD flags, HANDLE template_file);
BOOL WINAPI DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                            LPDWORD returned, LPOVERLAPPED overlapped);
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped);

#define EV_RXCHAR 0x0001u
#define EV_ERR 0x0080u
#define PURGE_TXABORT 0x0001u
#define PURGE_RXABORT 0x0002u
#define PURGE_TXCLEAR 0x0004u
#define PURGE_RXCLEAR 0x0008u
#define NOPARITY 0
#define ONESTOPBIT 0
#define DTR_CONTROL_DISABLE 0x00
#define RTS_CONTROL_DISABLE 0x00
#define RTS_CONTROL_ENABLE 0x01
#define CBR_38400 38400u

typedef struct _DCB {
  DWORD DCBlength;
  DWORD BaudRate;
  DWORD fBinary : 1;
  DWORD fParity : 1;
  DWORD fOutxCtsFlow : 1;
  DWORD fOutxDsrFlow : 1;
  DWORD fDtrControl : 2;
  DWORD fDsrSensitivity : 1;
  DWORD fTXContinueOnXoff : 1;
  DWORD fOutX : 1;
  DWORD fInX : 1;
  DWORD fErrorChar : 1;
  DWORD fNull : 1;
  DWORD fRtsControl : 2;
  DWORD fAbortOnError : 1;
  DWORD fDummy2 : 17;
  WORD wReserved;
  WORD XonLim;
  WORD XoffLim;
  BYTE ByteSize;
  BYTE Parity;
  BYTE StopBits;
  char XonChar;
  char XoffChar;
  char ErrorChar;
  char EofChar;
  char EvtChar;
  WORD wReserved1;
} DCB, *LPDCB;

typedef struct _COMMTIMEOUTS {
  DWORD ReadIntervalTimeout;
  DWORD ReadTotalTimeoutMultiplier;
  DWORD ReadTotalTimeoutConstant;
  DWORD WriteTotalTimeoutMultiplier;
  DWORD WriteTotalTimeoutConstant;
} COMMTIMEOUTS, *LPCOMMTIMEOUTS;

typedef struct _COMSTAT {
  DWORD fCtsHold : 1;
  DWORD fDsrHold : 1;
  DWORD fRlsdHold : 1;
  DWORD fXoffHold : 1;
  DWORD fXoffSent : 1;
  DWORD fEof : 1;
  DWORD fTxim : 1;
  DWORD fReserved : 25;
  DWORD cbInQue;
  DWORD cbOutQue;
} COMSTAT, *LPCOMSTAT;

BOOL WINAPI SetupComm(HANDLE port, DWORD in_queue, DWORD out_queue);
BOOL WINAPI GetCommState(HANDLE port, LPDCB state);
BOOL WINAPI SetCommState(HANDLE port, LPDCB state);
BOOL WINAPI SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);
BOOL WINAPI SetCommMask(HANDLE port, DWORD mask);
BOOL WINAPI WaitCommEvent(HANDLE port, LPDWORD mask, LPOVERLAPPED overlapped);
BOOL WINAPI ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status);
BOOL WINAPI PurgeComm(HANDLE port, DWORD flags);

// Windows and messages.
typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);
typedef struct tagPOINT {
  LONG x;
  LONG y;
} POINT;
typedef struct tagMSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
} MSG, *LPMSG;
typedef struct tagWNDCLASSW {
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HANDLE hIcon;
  HANDLE hCursor;
  HANDLE hbrBackground;
  LPCWSTR lpszMenuName;
  LPCWSTR lpszClassName;
} WNDCLASSW;
#define GWL_WNDPROC (-4)
#define GWL_USERDATA (-21)
#define HWND_MESSAGE ((HWND)(intptr_t)-3)
#define WM_NULL 0x0000u
#define WM_DESTROY 0x0002u
#define WM_QUIT 0x0012u
#define WM_USER 0x0400u
#define WM_APP 0x8000u
#define QS_POSTMESSAGE 0x0008u
#define QS_SENDMESSAGE 0x0040u
#define QS_ALLINPUT 0x04FFu
#define PM_NOREMOVE 0x0000u
#define PM_REMOVE 0x0001u
#define PM_QS_SENDMESSAGE (QS_SENDMESSAGE << 16)
#define MWMO_INPUTAVAILABLE 0x0004u

ATOM WINAPI RegisterClassW(const WNDCLASSW* window_class);
HWND WINAPI CreateWindowExW(DWORD ex_style, LPCWSTR class_name, LPCWSTR title, DWORD style, int x, int y, int width,
                            int height, HWND parent, HANDLE menu, HINSTANCE instance, LPVOID parameter);
BOOL WINAPI DestroyWindow(HWND window);
BOOL WINAPI IsWindow(HWND window);
LRESULT WINAPI DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
LRESULT WINAPI CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wparam, LPARAM lparam);
DWORD WINAPI GetWindowThreadProcessId(HWND window, LPDWORD process);
BOOL WINAPI PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI InSendMessage(void);
LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
BOOL WINAPI GetMessageW(LPMSG message, HWND window, UINT first, UINT last);
BOOL WINAPI PeekMessageW(LPMSG message, HWND window, UINT first, UINT last, UINT remove);
LRESULT WINAPI DispatchMessageW(const MSG* message);
void WINAPI PostQuitMessage(int code);
DWORD WINAPI MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* objects, DWORD milliseconds, DWORD wake_mask,
                                         DWORD flags);

// Text.
typedef WORD LANGID;
LANGID WINAPI GetSystemDefaultLangID(void);
#define CP_ACP 0u
#define MB_PRECOMPOSED 0x00000001u
#define WC_COMPOSITECHECK 0x00000200u
int WINAPI MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size);
int WINAPI WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                               LPCSTR default_char, LPBOOL used_default);
DWORD WINAPI CharUpperBuffW(LPWSTR text, DWORD length);

#ifdef __cplusplus
}
#endif

// The rest, by subject. Each needs the types above.
#include "windows_files.h"
#include "windows_processes.h"
#include "windows_registry.h"
#include "windows_time.h"
#include "windows_version.h"

#endif
