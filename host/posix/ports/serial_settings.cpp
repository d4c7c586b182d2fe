#include "posix/ports/serial_settings.h"

#include <errno.h>
#include <sys/ioctl.h>
#include <termios.h>

namespace host {
namespace {

struct Speed {
  DWORD baud;
  speed_t code;
};

constexpr Speed kSpeeds[] = {{300, B300},       {600, B600},       {1200, B1200},    {2400, B2400},   {4800, B4800},
                             {9600, B9600},     {19200, B19200},   {38400, B38400},  {57600, B57600}, {115200, B115200},
                             {230400, B230400}, {460800, B460800}, {921600, B921600}};

const Speed* FindSpeed(DWORD baud) {
  for (const Speed& speed : kSpeeds) {
    if (speed.baud == baud) return &speed;
  }
  return nullptr;
}

// A pty has no modem lines; that it cannot hold them is no error.
void HoldModemLine(int tty, int line, bool on) { ioctl(tty, on ? TIOCMBIS : TIOCMBIC, &line); }

}  // namespace

DCB DefaultSerialState() {
  DCB state = {};
  state.DCBlength = sizeof state;
  state.BaudRate = 9600;
  state.fBinary = 1;
  state.fDtrControl = 1;
  state.fRtsControl = RTS_CONTROL_ENABLE;
  state.ByteSize = 8;
  state.XonChar = 0x11;
  state.XoffChar = 0x13;
  return state;
}

bool SerialStateSupported(const DCB& state) {
  const bool format = state.ByteSize == 8 && state.Parity == NOPARITY && state.StopBits == ONESTOPBIT;
  const bool checks = state.fBinary && !state.fParity && !state.fErrorChar && !state.fNull && !state.fAbortOnError;
  const bool flow = state.fOutxCtsFlow || state.fOutxDsrFlow || state.fDsrSensitivity || state.fOutX || state.fInX;
  return FindSpeed(state.BaudRate) != nullptr && format && checks && !flow && state.fDtrControl <= 1 &&
         state.fRtsControl <= 1;
}

DWORD ApplySerialState(int tty, const DCB& state) {
  termios settings;
  if (tcgetattr(tty, &settings) != 0) return ErrorFromErrno(errno);
  cfmakeraw(&settings);
  settings.c_cflag &= ~static_cast<tcflag_t>(CRTSCTS | CSTOPB | PARENB);
  settings.c_cflag |= CLOCAL | CREAD;
  cfsetspeed(&settings, FindSpeed(state.BaudRate)->code);
  if (tcsetattr(tty, TCSANOW, &settings) != 0) return ErrorFromErrno(errno);
  HoldModemLine(tty, TIOCM_DTR, state.fDtrControl != DTR_CONTROL_DISABLE);
  HoldModemLine(tty, TIOCM_RTS, state.fRtsControl != RTS_CONTROL_DISABLE);
  return NO_ERROR;
}

DWORD ErrorFromErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENODEV:
    case ENXIO:
      return ERROR_FILE_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EBUSY:
    case EWOULDBLOCK:
      return ERROR_ACCESS_DENIED;
    case EMFILE:
    case ENFILE:
      return ERROR_TOO_MANY_OPEN_FILES;
    case EIO:
      return ERROR_IO_DEVICE;
    default:
      return ERROR_GEN_FAILURE;
  }
}

}  // namespace host
