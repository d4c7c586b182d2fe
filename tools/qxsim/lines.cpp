#include "qxsim/lines.h"

#include "common/ports/ports.h"
#include "qxsim/start_error.h"

namespace qxsim {

Lines::Lines(const Options& options) {
  const std::string other = options.port == "COM5:" ? "COMBT:" : "COM5:";
  try {
    path_ = Add(options.port, options.device, options.link);
    if (path_.empty()) throw StartError("port: this machine has no ptys; say --device");
    Add(other, options.device_2, SecondLink(options.link));
  } catch (...) {
    Leave();
    throw;
  }
}

Lines::~Lines() { Leave(); }

std::string Lines::Add(const std::string& port, const std::string& device, const std::string& link) {
  if (!device.empty()) {
    const std::string name = DeviceName(device);
    host::AttachDevice(port, name);
    devices_.push_back(port);
    return name;
  }
  std::unique_ptr<OwnLine> line = MakeOwnLine(port, link);
  if (line == nullptr) return {};
  own_lines_.push_back(std::move(line));
  return own_lines_.back()->path();
}

void Lines::Leave() {
  own_lines_.clear();
  for (const std::string& port : devices_) host::DetachPort(port);
}

}  // namespace qxsim
