// A pty for a benchmark: the service's end and the controller's, both raw.
#ifndef QXCM_BENCH_PTY_PAIR_H
#define QXCM_BENCH_PTY_PAIR_H

#include <string>
#include <string_view>

namespace qxbench {

/// The controller's end of a line: blocking reads and writes on a tty.
class Controller {
 public:
  /// Opens the tty at `path`. Throws std::system_error.
  explicit Controller(const std::string& path);
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;
  ~Controller();

  void Send(std::string_view bytes);
  /// Reads until so many ACK bytes have come. Throws std::runtime_error after two silent seconds.
  void AwaitAcks(int count);
  /// Reads until the byte `last` has come as often as `count`.
  void Await(char last, int count);

 private:
  int fd_;
};

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
