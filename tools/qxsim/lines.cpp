#include "qxsim/lines.h"

#include <filesystem>

#include "common/ports/ports.h"

namespace qxsim {

Lines::Lines(const Options& options) {
  const std::string other = options.port == "COM5:" ? "COMBT:" : "COM5:";
  try {
    if (options.device.empty()) {
      AddPty(options.port, options.link);
      path_ = links_.front()->path();
    } else {
      path_ = std::filesystem::absolute(options.device).lexically_normal();
      host::AttachDevice(options.port, path_);
      ports_.push_back(options.port);
    }
    AddPty(other, SecondLink(options.link));
  } catch (...) {
    Leave();
    throw;
  }
}

Lines::~Lines() { Leave(); }

void Lines::AddPty(const std::string& port, const std::string& link) {
  const std::string controller_end = host::AttachPty(port);
  ports_.push_back(port);
  links_.push_back(std::make_unique<Link>(link, controller_end));
}

void Lines::Leave() {
  links_.clear();
  for (const std::string& port : ports_) host::DetachPort(port);
}

}  // namespace qxsim
