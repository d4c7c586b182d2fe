// The instrument's serial ports ("COM5:", "COMBT:") and the tty lines of this machine they lead to.
#ifndef QXHOST_COMMON_PORTS_PORTS_H
#define QXHOST_COMMON_PORTS_PORTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace host {

/// Makes a pty and leads the port ("COM5:") to its instrument end. Returns the path of the controller's end (the tty
/// to link to), which stays usable while no controller has it open. Throws std::system_error.
std::string AttachPty(std::string_view port);

/// Leads the port to a serial device of this machine, opened when the library opens the port.
void AttachDevice(std::string_view port, std::string path);

/// The port leads nowhere again (its CreateFileW fails with error 2); a pty made for it goes away.
void DetachPort(std::string_view port);

/// Asked, on the opener's thread and without a lock, whenever the port is opened; while it says no the port is not
/// there yet (error 2). Stays while the port's line changes; null for none. The port is named as it is attached.
using PortGate = std::function<bool()>;
void GatePort(std::string_view port, PortGate is_there);

/// While true, a port may be opened more than once; received bytes go to the first opener.
void SharePorts(bool shared);
bool PortsShared();

/// Lets bytes through no faster than this line speed, both ways (10 bits a byte); 0 = no limit.
void PacePorts(std::uint32_t baud);

/// Sees every byte the library reads ("in") and writes on a port, as it happens, on the thread that does it.
/// Null for none. Set it before the first service opens.
using PortObserver = std::function<void(std::string_view port, bool in, std::string_view bytes)>;
void SetPortObserver(PortObserver observer);

}  // namespace host

#endif
