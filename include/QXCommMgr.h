/*
 * QXCommMgr: the communication manager of the instrument, as applications see it.
 *
 * 1. An application opens the service on a port (QCMOpenComm) and gets a handle; every other call takes that handle.
 *    A handle is never 0. At most 8 services are open in a process at a time.
 * 2. Every call but QCMOpenComm returns a result code: QCM_OK or one of the negative codes below. No call throws.
 * 3. Every call may be made from any thread. A handle may be closed while other threads use it: their calls then
 *    return QCM_NO_SERVICE.
 * 4. Notices reach the windows registered with QCMRegisterNotifyWindow: wParam is one of the QCM_NOTIFY codes, lParam
 *    its detail. A distance request (QCM_NOTIFY_DISTANCE_REQUEST) is sent and waits until the window has handled it;
 *    while handling it a window may call every function here on the same thread, except to register or unregister a
 *    window of the same service. All other notices are posted.
 * 5. Records are copied out whole; a call that does not return QCM_OK leaves the caller's record untouched.
 * 6. A thread that owns a window and waits inside QCMOpenComm or QCMCloseComm handles messages sent to its windows
 *    while it waits. QCMCloseComm called by a window while it handles a sent notice returns at once; the service's
 *    command thread ends when the window has returned.
 * 7. Text is 16 bits a character and ends in a zero. Angles are radians, lengths metres, unless a name says otherwise.
 */
#ifndef QXCOMMMGR_H
#define QXCOMMMGR_H

#include <stddef.h> /* wchar_t */

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32) || defined(UNDER_CE)
typedef wchar_t QCM_WCHAR;
#elif defined(__cplusplus)
typedef char16_t QCM_WCHAR;
#else
typedef unsigned short QCM_WCHAR;
#endif

typedef unsigned int QCM_HANDLE; /* an open service; 0 is none */
typedef unsigned int QCM_UINT32; /* 32 bits, unsigned */
typedef int QCM_INT32;           /* 32 bits, signed */
typedef void* QCM_WINDOW;        /* the platform's window handle (HWND) */

/* Result codes. */
#define QCM_OK 0
#define QCM_BAD_ARGUMENT (-1)      /* a missing or too small buffer, no window, a value out of range */
#define QCM_PORT_FAILED (-12)      /* the port could not be reopened */
#define QCM_NOTHING_RECORDED (-13) /* no request of that kind, or a window that is not registered */
#define QCM_NO_SERVICE (-14)       /* no such open service */

/* Notices: wParam of the message a registered window receives. */
#define QCM_NOTIFY_DISTANCE_REQUEST 256
#define QCM_NOTIFY_HORIZONTAL_ANGLE_SET 513
#define QCM_NOTIFY_PARAMETERS_CHANGED 1025
#define QCM_NOTIFY_CONSTANTS_CHANGED 1281
#define QCM_NOTIFY_EQUIPMENT_CHANGED 1537
#define QCM_NOTIFY_TIME_ZONE_CHANGED 1793
#define QCM_NOTIFY_CLOCK_SET 1794
#define QCM_NOTIFY_REGISTRY_WRITTEN 2305
#define QCM_NOTIFY_PROCESS_STARTED 2560
#define QCM_NOTIFY_FOCUS 3584

/* A distance measurement the controller asked for. */
typedef struct QCM_MSR_PARAMS {
  QCM_UINT32 mode;        /* 1, 2 or 3 */
  QCM_UINT32 target;      /* 0 or 1 */
  QCM_UINT32 single_shot; /* 1: one measurement, 0: repeated */
  QCM_UINT32 reserved;    /* 0 */
  double offset;          /* added to every slope distance, metres */
} QCM_MSR_PARAMS;         /* 24 bytes */

/* The program last started for the controller; both texts end in a zero. */
typedef struct QCM_EXECUTED_PROCESS_INFO {
  QCM_WCHAR command_line[260];
  QCM_WCHAR program[260];
} QCM_EXECUTED_PROCESS_INFO; /* 1040 bytes */

/* Records that no command fills at present; their calls return QCM_NOTHING_RECORDED. */
typedef struct QCM_TURN_PARAMS {
  QCM_UINT32 words[12];
} QCM_TURN_PARAMS; /* 48 bytes */
typedef struct QCM_TARGET_SEARCH_PARAMS {
  QCM_UINT32 words[10];
} QCM_TARGET_SEARCH_PARAMS; /* 40 bytes */
typedef struct QCM_TARGET_SEARCH_RESULT {
  QCM_UINT32 words[9];
} QCM_TARGET_SEARCH_RESULT; /* 36 bytes */
typedef struct QCM_SAVED_IMAGE_PARAMS {
  QCM_UINT32 words[133];
} QCM_SAVED_IMAGE_PARAMS; /* 532 bytes */

/*
 * Opens the service on a port. "COMBT:" in any letter case, with or without the colon, is the Bluetooth serial port;
 * every other name is the cable's port "COM5:". Returns a handle, or 0 when the port is in use or cannot be opened,
 * 8 services are open already, the name is missing, or the system has no application window for its events.
 * Waits for an open or close in progress on another thread.
 */
QCM_HANDLE QCMOpenComm(const QCM_WCHAR* port_name);

/* Closes a service: stops its threads, closes its port, frees its records and registrations.
 * May take as long as a write in progress (at most 6 seconds). */
QCM_INT32 QCMCloseComm(QCM_HANDLE handle);

/* Closes the port but keeps the service: commands already received are still carried out, nothing is written. */
QCM_INT32 QCMSuspendComm(QCM_HANDLE handle);

/* Opens the port of a suspended service again. QCM_PORT_FAILED leaves it suspended. */
QCM_INT32 QCMResumeComm(QCM_HANDLE handle);

/* Registers a window for notices under a message number from 0x8000 to 0xBFFF; registering it again replaces the
 * number. QCM_BAD_ARGUMENT: not a window, or a number out of range. */
QCM_INT32 QCMRegisterNotifyWindow(QCM_HANDLE handle, QCM_WINDOW window, QCM_UINT32 message);

/* Takes a window off the list. QCM_NOTHING_RECORDED: it was not registered. */
QCM_INT32 QCMUnregisterNotifyWindow(QCM_HANDLE handle, QCM_WINDOW window);

/* Copies the port name the service was opened with, in upper case and ending in ":". buffer_bytes is the size of the
 * buffer in bytes. QCM_BAD_ARGUMENT: no buffer, or too small for the name and its zero (an empty text is written if
 * there is room for one). */
QCM_INT32 QCMGetPortName(QCM_HANDLE handle, QCM_WCHAR* buffer, QCM_UINT32 buffer_bytes);

/* Sets the step to which reported angles are rounded: 0.1 to 60.0 seconds of arc; 1.0 when a service opens. */
QCM_INT32 QCMSetAngleRoundParams(QCM_HANDLE handle, double step_seconds);

/* The last request of each kind. QCM_NOTHING_RECORDED: none so far. Reading does not clear it.
 * A missing record pointer is QCM_BAD_ARGUMENT. */
QCM_INT32 QCMGetLastMsrParams(QCM_HANDLE handle, QCM_MSR_PARAMS* record);
QCM_INT32 QCMGetLastExecutedProcessInfo(QCM_HANDLE handle, QCM_EXECUTED_PROCESS_INFO* record);
QCM_INT32 QCMGetLastTurnParams(QCM_HANDLE handle, QCM_TURN_PARAMS* record);
QCM_INT32 QCMGetLastTargetSearchParams(QCM_HANDLE handle, QCM_TARGET_SEARCH_PARAMS* record);
QCM_INT32 QCMGetLastSavedImageParams(QCM_HANDLE handle, QCM_SAVED_IMAGE_PARAMS* record);
QCM_INT32 QCMGetLastTargetSearchResult(QCM_HANDLE handle, QCM_TARGET_SEARCH_RESULT* record);

/* Lets the controller use the tools commands on this service until it is closed. */
QCM_INT32 QCMT_UpgradeToolsMode(QCM_HANDLE handle);

#ifdef __cplusplus
}
#endif

#endif
