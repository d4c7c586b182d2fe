// What all ports have in common; set through ports.h.
#ifndef QXHOST_POSIX_PORTS_PORT_OPTIONS_H
#define QXHOST_POSIX_PORTS_PORT_OPTIONS_H

#include <cstdint>
#include <string_view>

namespace host {

/// The line speed that ports are held to, 0 for none.
std::uint32_t PortPace();

/// Shows bytes that have passed to the observer, if there is one. Called without any lock.
void ShowPortBytes(std::string_view port, bool in, std::string_view bytes);

}  // namespace host

#endif
