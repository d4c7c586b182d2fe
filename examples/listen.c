/*
 * Opens the service on a port, registers a window and prints the notices it gets: listen [--for SECONDS] [PORT]
 *
 * The port is "COM5:" unless another is named. Ends on Ctrl-C, or when the seconds are over.
 */
#include <QXCommMgr.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

#include "surroundings.h"

#define EVENT_MESSAGE (WM_USER + 1) /* the instrument's events; the library handles them */
#define NOTICE_MESSAGE 0x8000       /* notices of the service */
#define LOOK_AGAIN 100              /* milliseconds between looks at the clock and for Ctrl-C */
#define LONGEST_NAME 32             /* of a port, in characters */

static const WCHAR class_name[] = {'L', 'i', 's', 't', 'e', 'n', 0};
static QCM_HANDLE service = 0;

struct Meaning {
  WPARAM code;
  const char* text;
};

static const struct Meaning meanings[] = {
    {QCM_NOTIFY_DISTANCE_REQUEST, "QCM_NOTIFY_DISTANCE_REQUEST"},
    {QCM_NOTIFY_HORIZONTAL_ANGLE_SET, "QCM_NOTIFY_HORIZONTAL_ANGLE_SET"},
    {QCM_NOTIFY_PARAMETERS_CHANGED, "QCM_NOTIFY_PARAMETERS_CHANGED"},
    {QCM_NOTIFY_CONSTANTS_CHANGED, "QCM_NOTIFY_CONSTANTS_CHANGED"},
    {QCM_NOTIFY_EQUIPMENT_CHANGED, "QCM_NOTIFY_EQUIPMENT_CHANGED"},
    {QCM_NOTIFY_TIME_ZONE_CHANGED, "QCM_NOTIFY_TIME_ZONE_CHANGED"},
    {QCM_NOTIFY_CLOCK_SET, "QCM_NOTIFY_CLOCK_SET"},
    {QCM_NOTIFY_REGISTRY_WRITTEN, "QCM_NOTIFY_REGISTRY_WRITTEN"},
    {QCM_NOTIFY_PROCESS_STARTED, "QCM_NOTIFY_PROCESS_STARTED"},
    {QCM_NOTIFY_FOCUS, "QCM_NOTIFY_FOCUS"},
};

static const char* MeaningOf(WPARAM code) {
  size_t i;
  for (i = 0; i < sizeof meanings / sizeof meanings[0]; ++i) {
    if (meanings[i].code == code) return meanings[i].text;
  }
  return "unknown";
}

/* A distance request is sent: the controller's command waits until this has returned. */
static void PrintDistanceRequest(void) {
  QCM_MSR_PARAMS request;
  if (QCMGetLastMsrParams(service, &request) != QCM_OK) return;
  printf("  mode %u, target %u, %s, offset %.4f m\n", request.mode, request.target,
         request.single_shot ? "once" : "repeated", request.offset);
}

static void PrintNotice(WPARAM code, LPARAM detail) {
  printf("notice %u %ld %s\n", (unsigned)code, (long)detail, MeaningOf(code));
  if (code == QCM_NOTIFY_DISTANCE_REQUEST) PrintDistanceRequest();
  fflush(stdout);
}

static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != NOTICE_MESSAGE) return DefWindowProcW(window, message, wparam, lparam);
  PrintNotice(wparam, lparam);
  return 0;
}

static HWND MakeWindow(void) {
  WNDCLASSW description;
  memset(&description, 0, sizeof description);
  description.lpfnWndProc = Procedure;
  description.lpszClassName = class_name;
  if (RegisterClassW(&description) == 0) return NULL;
  return CreateWindowExW(0, class_name, class_name, 0, 0, 0, 0, 0, NULL, NULL, NULL, NULL);
}

/* Handles what has come for the thread's windows, or comes within this time. */
static void HandleMessages(DWORD milliseconds) {
  MSG message;
  MsgWaitForMultipleObjectsEx(0, NULL, milliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
  while (PeekMessageW(&message, NULL, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

/* milliseconds: INFINITE for no end but Ctrl-C. */
static void Listen(DWORD milliseconds) {
  const DWORD begin = GetTickCount();
  while (!AskedToEnd() && (milliseconds == INFINITE || GetTickCount() - begin < milliseconds)) {
    HandleMessages(LOOK_AGAIN);
  }
}

static QCM_HANDLE Open(const char* port) {
  QCM_WCHAR name[LONGEST_NAME + 1];
  size_t i;
  for (i = 0; i < LONGEST_NAME && port[i] != 0; ++i) name[i] = (unsigned char)port[i];
  name[i] = 0;
  return QCMOpenComm(name);
}

/* Everything between opening and closing; the result is the program's. */
static int ListenOn(const char* port, DWORD milliseconds, HWND window) {
  service = Open(port);
  if (service == 0) {
    fprintf(stderr, "no service on %s\n", port);
    return EXIT_FAILURE;
  }
  QCMRegisterNotifyWindow(service, window, NOTICE_MESSAGE);
  printf("listening on %s\n", port);
  fflush(stdout);
  Listen(milliseconds);
  QCMUnregisterNotifyWindow(service, window);
  QCMCloseComm(service);
  printf("closed\n");
  fflush(stdout);
  return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
  DWORD milliseconds = INFINITE;
  const char* port = "COM5:";
  HWND window;
  int result = EXIT_FAILURE;
  if (argc > 2 && strcmp(argv[1], "--for") == 0) {
    milliseconds = (DWORD)atoi(argv[2]) * 1000;
    argc -= 2;
    argv += 2;
  }
  if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
    fprintf(stderr, "usage: listen [--for SECONDS] [PORT]\n");
    return EXIT_FAILURE;
  }
  if (argc == 2) port = argv[1];
  window = MakeWindow();
  if (window != NULL && PrepareSurroundings(port, window, EVENT_MESSAGE)) {
    result = ListenOn(port, milliseconds, window);
  }
  DestroyWindow(window);
  LeaveSurroundings();
  return result;
}
