// Threads for requests that may take long: as many as are busy at once, up to a bound.
#ifndef QXSIM_HTTP_WORKER_POOL_H
#define QXSIM_HTTP_WORKER_POOL_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace qxsim {

class WorkerPool {
 public:
  explicit WorkerPool(std::size_t most_threads) : most_threads_(most_threads) {}
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  /// Waits for the tasks under way; tasks that have not begun are dropped.
  ~WorkerPool();

  /// Runs the task on a thread of the pool as soon as one is free. Any thread.
  void Post(std::function<void()> task);

 private:
  void Work();

  const std::size_t most_threads_;
  std::mutex mutex_;  // guards all below
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
  bool stopping_ = false;
};

}  // namespace qxsim

#endif
