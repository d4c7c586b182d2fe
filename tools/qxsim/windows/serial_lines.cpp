#include "qxsim/system/serial_lines.h"

namespace qxsim {

std::string DeviceName(const std::string& device) { return device; }

std::unique_ptr<OwnLine> MakeOwnLine(const std::string&, const std::string&) { return nullptr; }

}  // namespace qxsim
