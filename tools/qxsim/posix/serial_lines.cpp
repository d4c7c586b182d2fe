#include "qxsim/system/serial_lines.h"

#include <filesystem>

#include "common/ports/ports.h"
#include "qxsim/posix/link.h"

namespace qxsim {
namespace {

/// A port that leads to a pty.
class AttachedPty {
 public:
  explicit AttachedPty(std::string port) : port_(std::move(port)), controller_end_(host::AttachPty(port_)) {}
  AttachedPty(const AttachedPty&) = delete;
  AttachedPty& operator=(const AttachedPty&) = delete;
  ~AttachedPty() { host::DetachPort(port_); }

  const std::string& controller_end() const { return controller_end_; }

 private:
  const std::string port_;
  const std::string controller_end_;
};

class LinkedPty final : public OwnLine {
 public:
  LinkedPty(const std::string& port, const std::string& link) : pty_(port), link_(link, pty_.controller_end()) {}
  std::string path() const override { return link_.path(); }

 private:
  const AttachedPty pty_;
  const Link link_;  // goes first
};

}  // namespace

std::string DeviceName(const std::string& device) { return std::filesystem::absolute(device).lexically_normal(); }

std::unique_ptr<OwnLine> MakeOwnLine(const std::string& port, const std::string& link) {
  return std::make_unique<LinkedPty>(port, link);
}

}  // namespace qxsim
