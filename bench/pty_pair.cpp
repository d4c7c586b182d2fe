// Pty set-up.
#include "pty_pair.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qxbench {

namespace {

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
