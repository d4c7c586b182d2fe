#include "qxsim/http/worker_pool.h"

namespace qxsim {

WorkerPool::~WorkerPool() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
    tasks_.clear();
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::Post(std::function<void()> task) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (stopping_) return;
  tasks_.push_back(std::move(task));
  if (tasks_.size() > idle_ && threads_.size() < most_threads_) {
    threads_.emplace_back([this] { Work(); });
  } else {
    changed_.notify_one();
  }
}

void WorkerPool::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    ++idle_;
    changed_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
    --idle_;
    if (stopping_) return;
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    task = nullptr;  // what it holds may be given back to code that takes locks of its own
    lock.lock();
  }
}

}  // namespace qxsim
