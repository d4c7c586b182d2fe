// What all ports have in common; set through ports.h.
#ifndef QXHOST_COMMON_PORTS_PORT_OPTIONS_H
#define QXHOST_COMMON_PORTS_PORT_OPTIONS_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "common/streams/streams.h"

namespace host {

/// The line speed that ports are held to, 0 for none.
std::uint32_t PortPace();

/// Shows bytes that have passed to the observer, if there is one. Called without any lock.
void ShowPortBytes(std::string_view port, bool in, std::string_view bytes);

/// Makes the port known: `open` opens its line, when the port is there (see GatePort) and is opened as the platform
/// opens ports; null with the last error set when it cannot.
void AttachLine(std::string port, std::function<std::shared_ptr<Stream>()> open);

}  // namespace host

#endif
