// What a round trip over a pty costs without the library.
#ifndef QXCM_BENCH_REFERENCE_PROGRAMS_H
#define QXCM_BENCH_REFERENCE_PROGRAMS_H

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "pty_pair.h"

namespace qxbench {

/// floor-raw: one thread reads a frame and writes an answer.
class FloorRaw {
 public:
  explicit FloorRaw(std::string_view answer);
  ~FloorRaw();
  const std::string& path() const { return pty_.path; }

 private:
  void Run();

  Pty pty_;
  const std::string answer_;
  std::thread thread_;
};

/// floor-hops: reader thread -> queue and condition variable -> worker -> queue and condition variable -> writer
/// thread, which do nothing with what they carry.
class FloorHops {
 public:
  explicit FloorHops(std::string_view answer);
  ~FloorHops();
  const std::string& path() const { return pty_.path; }

 private:
  class Queue {
   public:
    void Push(std::string text);
    std::string Pop();  // empty: the end

   private:
    std::mutex mutex_;
    std::condition_variable filled_;
    std::deque<std::string> texts_;
  };
  void Read();
  void Work();
  void Write();

  Pty pty_;
  const std::string answer_;
  Queue received_;
  Queue to_send_;
  std::thread reader_;
  std::thread worker_;
  std::thread writer_;
};

}  // namespace qxbench

#endif
