#include "common/ports/line.h"

#include <algorithm>
#include <utility>

#include "common/ports/ports.h"

namespace host {

Line::Line(std::string port) : port_(std::move(port)) {}

DWORD Line::Join(LineUser* user) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!users_.empty() && !PortsShared()) return ERROR_ACCESS_DENIED;
  if (users_.empty()) {
    if (const DWORD error = Open()) return error;
  }
  users_.push_back(user);
  receiver_ = users_.front();
  return NO_ERROR;
}

void Line::Leave(LineUser* user) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = std::find(users_.begin(), users_.end(), user);
  if (found == users_.end()) return;
  users_.erase(found);
  receiver_ = users_.empty() ? nullptr : users_.front();
  if (users_.empty()) {
    Close();
  } else {
    users_.front()->Wake();
  }
}

bool Line::BeginWriting(const std::atomic<bool>& closed) {
  std::unique_lock<std::mutex> lock(writing_mutex_);
  written_.wait(lock, [&] { return !writing_ || closed; });
  if (closed) return false;
  writing_ = true;
  return true;
}

void Line::EndWriting() {
  const std::lock_guard<std::mutex> lock(writing_mutex_);
  writing_ = false;
  written_.notify_all();
}

void Line::StopWaiting() {
  const std::lock_guard<std::mutex> lock(writing_mutex_);
  written_.notify_all();
}

}  // namespace host
