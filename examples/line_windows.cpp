// The machine's own port of that name, or the one that LISTEN_DEVICE names.
#include <cstdlib>

#include "common/ports/ports.h"
#include "line.h"

std::string LeadToALine(const std::string& port) {
  const char* other = std::getenv("LISTEN_DEVICE");
  const std::string device = other != nullptr ? other : port.substr(0, port.find(':'));
  host::AttachDevice(port, device);
  return device;
}
