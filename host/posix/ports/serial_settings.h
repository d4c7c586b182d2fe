// A serial port's settings, and what of them reaches a tty of this machine.
#ifndef QXHOST_POSIX_PORTS_SERIAL_SETTINGS_H
#define QXHOST_POSIX_PORTS_SERIAL_SETTINGS_H

#include <windows.h>

namespace host {

/// What a port has when it has just been opened: 9600 baud, 8 data bits, no parity, 1 stop bit.
DCB DefaultSerialState();

/// Whether the port can work so: a usual speed, 8 data bits, no parity, 1 stop bit, no flow control, DTR and RTS held.
bool SerialStateSupported(const DCB& state);

/// Makes the tty raw, at the state's speed and with its DTR and RTS. Returns 0 or an error code.
DWORD ApplySerialState(int tty, const DCB& state);

/// The platform's code for an error of this machine.
DWORD ErrorFromErrno(int error);

}  // namespace host

#endif
