// The machine's own port of that name.
#include "common/ports/ports.h"
#include "line.h"

std::string LeadToALine(const std::string& port) {
  std::string device = port;
  if (!device.empty() && device.back() == ':') device.pop_back();
  host::AttachDevice(port, device);
  return device;
}
