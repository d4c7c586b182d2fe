// The controller's end on this host: the other end of the port's pty.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "common/ports/ports.h"
#include "controller_line.h"

using Clock = std::chrono::steady_clock;

struct ControllerLine::End {
  explicit End(const std::string& path) : tty(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) { EXPECT_GE(tty, 0); }
  ~End() { close(tty); }
  const int tty;
};

ControllerLine::ControllerLine(std::string port)
    : port_(std::move(port)), end_(std::make_unique<End>(host::AttachPty(port_))) {}

ControllerLine::~ControllerLine() { host::DetachPort(port_); }

void ControllerLine::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(end_->tty, bytes.data(), bytes.size());
    ASSERT_GT(count, 0);
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string ControllerLine::Receive(std::size_t bytes, std::chrono::milliseconds time) {
  std::string received(bytes, '\0');
  std::size_t count = 0;
  for (const auto end = Clock::now() + time; count < bytes;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    pollfd readable{end_->tty, POLLIN, 0};
    if (poll(&readable, 1, left.count() < 0 ? 0 : static_cast<int>(left.count()) + 1) != 1) break;
    const ssize_t got = read(end_->tty, &received[count], bytes - count);
    if (got <= 0) break;
    count += static_cast<std::size_t>(got);
  }
  received.resize(count);
  return received;
}
