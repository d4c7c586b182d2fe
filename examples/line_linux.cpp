#include "common/ports/ports.h"
#include "line.h"

std::string LeadToALine(const std::string& port) { return host::AttachPty(port); }
