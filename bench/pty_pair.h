// A pty for a reference program.
#ifndef QXCM_BENCH_PTY_PAIR_H
#define QXCM_BENCH_PTY_PAIR_H

#include <string>

namespace qxbench {

/// A pty made for a reference program: `master` is the instrument's end, `path` the controller's tty.
struct Pty {
  Pty();
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;
  ~Pty();

  int master = -1;
  int keep_open = -1;  // so that the line never hangs up
  std::string path;
};

}  // namespace qxbench

#endif
