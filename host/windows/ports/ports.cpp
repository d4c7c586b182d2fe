#include "common/ports/ports.h"

#include <memory>
#include <system_error>

#include "common/ports/port_options.h"
#include "windows/ports/com_line.h"
#include "windows/ports/com_port.h"

namespace host {

// The system has no ptys: whoever wants one makes it outside, and gives it the name of a port.
std::string AttachPty(std::string_view port) {
  throw std::system_error(std::make_error_code(std::errc::not_supported), "a pty for " + std::string(port));
}

void AttachDevice(std::string_view port, std::string path) {
  const auto line = std::make_shared<ComLine>(std::string(port), std::move(path));
  AttachLine(line->port(), [line] { return ComPort::Open(line); });
}

}  // namespace host
