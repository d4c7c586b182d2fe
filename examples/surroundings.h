/* What is in place on an instrument before an application starts, and must be made on a desk. */
#ifndef QXEXAMPLES_SURROUNDINGS_H
#define QXEXAMPLES_SURROUNDINGS_H

#include <windows.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Leads the port to a line and says where that is; names the window that the instrument's events go to, under this
 * message number (at least 1024); begins to watch for Ctrl-C. On failure it says why and returns 0. */
int PrepareSurroundings(const char* port, HWND window, UINT event_message);

/* What PrepareSurroundings has begun ends. No service may be open, and the window must be gone: it may be sent an event
 * to the last. */
void LeaveSurroundings(void);

/* Whether Ctrl-C has been pressed. */
int AskedToEnd(void);

#ifdef __cplusplus
}
#endif

#endif
