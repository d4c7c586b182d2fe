/* A pty has no modem lines, and the ioctls that ask for them fail: a serial wait under Wine would end at once, without
 * an event. Preloaded (LD_PRELOAD), this answers those ioctls as a line does on which nothing ever changes. An answer
 * of the device itself, and any other failure (a line that has hung up), is passed on as it is.
 *
 * Nor does a pty become the controlling terminal of the program that opens it, as it would of Wine's server, which
 * opens all ports: the server would be ended by SIGHUP together with the line.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/serial.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ioctl.h>

typedef int (*open_call)(const char*, int, ...);
typedef int (*ioctl_call)(int, unsigned long, void*);

int open(const char* path, int flags, ...) {
  static open_call real;
  va_list arguments;
  mode_t mode;
  va_start(arguments, flags);
  mode = va_arg(arguments, mode_t); /* meaningless, and passed on as such, where no file is made */
  va_end(arguments);
  if (!real) real = (open_call)dlsym(RTLD_NEXT, "open");
  return real(path, flags | O_NOCTTY, mode);
}

static int has_no_such_call(void) { return errno == ENOTTY || errno == EINVAL; }

int ioctl(int fd, unsigned long request, ...) {
  static ioctl_call real;
  va_list arguments;
  void* argument;
  int result;
  va_start(arguments, request);
  argument = va_arg(arguments, void*);
  va_end(arguments);
  if (!real) real = (ioctl_call)dlsym(RTLD_NEXT, "ioctl");
  result = real(fd, request, argument);
  if (result >= 0 || !has_no_such_call()) return result;
  switch (request) {
    case TIOCGICOUNT:
      memset(argument, 0, sizeof(struct serial_icounter_struct));
      return 0;
    case TIOCMGET:
    case TIOCSERGETLSR:
      *(int*)argument = 0;
      return 0;
    case TIOCMSET:
    case TIOCMBIS:
    case TIOCMBIC:
      return 0;
    default:
      return result;
  }
}
