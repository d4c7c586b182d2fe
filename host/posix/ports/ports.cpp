#include "common/ports/ports.h"

#include <memory>
#include <utility>

#include "common/ports/port_options.h"
#include "posix/ports/tty_line.h"
#include "posix/ports/tty_port.h"

namespace host {
namespace {

void Attach(const std::shared_ptr<TtyLine>& line) {
  AttachLine(line->port(), [line] { return TtyPort::Open(line); });
}

}  // namespace

std::string AttachPty(std::string_view port) {
  const auto line = std::make_shared<TtyLine>(std::string(port));
  Attach(line);
  return line->controller_path();
}

void AttachDevice(std::string_view port, std::string path) {
  Attach(std::make_shared<TtyLine>(std::string(port), std::move(path)));
}

}  // namespace host
