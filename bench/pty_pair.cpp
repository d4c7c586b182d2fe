// Pty set-up and the controller's side of the benchmarks.
#include "pty_pair.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace qxbench {

namespace {

constexpr int kSilenceMs = 2000;
constexpr char kAck = 0x06;

int Checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

void MakeRaw(int fd) {
  termios settings;
  Checked(tcgetattr(fd, &settings), "tcgetattr");
  cfmakeraw(&settings);
  Checked(tcsetattr(fd, TCSANOW, &settings), "tcsetattr");
}

}  // namespace

Controller::Controller(const std::string& path) : fd_(Checked(open(path.c_str(), O_RDWR | O_NOCTTY), "open")) {
  MakeRaw(fd_);
}

Controller::~Controller() { close(fd_); }

void Controller::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    bytes.remove_prefix(
        static_cast<std::size_t>(Checked(static_cast<int>(write(fd_, bytes.data(), bytes.size())), "write")));
  }
}

void Controller::AwaitAcks(int count) { Await(kAck, count); }

void Controller::Await(char last, int count) {
  char buffer[4096];
  while (count > 0) {
    pollfd ready = {fd_, POLLIN, 0};
    if (Checked(poll(&ready, 1, kSilenceMs), "poll") == 0) throw std::runtime_error("no answer");
    const auto got = Checked(static_cast<int>(read(fd_, buffer, sizeof buffer)), "read");
    for (int i = 0; i < got; ++i) count -= buffer[i] == last ? 1 : 0;
  }
}

Pty::Pty() {
  master = Checked(posix_openpt(O_RDWR | O_NOCTTY), "posix_openpt");
  Checked(grantpt(master), "grantpt");
  Checked(unlockpt(master), "unlockpt");
  path = ptsname(master);
  keep_open = Checked(open(path.c_str(), O_RDWR | O_NOCTTY), "open");
  MakeRaw(keep_open);
}

Pty::~Pty() {
  close(master);
  close(keep_open);
}

}  // namespace qxbench
