#include "posix/windows/message_queue.h"

#include <algorithm>
#include <utility>

#include "common/calls/calls.h"
#include "common/windows/windows_messages.h"
#include "posix/windows/window_table.h"

namespace host {

std::uint64_t NumberFor(const MSG& message) {
  constexpr UINT kLastOfApplications = 0xBFFF;
  return message.message >= WM_APP && message.message <= kLastOfApplications ? TakeCallNumber() : 0;
}

void SentMessage::Answer(KernelLock& lock, std::optional<LRESULT> result) {
  result_ = result;
  done_ = true;
  Signal(lock);
}

bool MessageFilter::Matches(const MSG& message) const {
  if (window != nullptr && message.hwnd != window) return false;
  return (first == 0 && last == 0) || (message.message >= first && message.message <= last);
}

bool MessageQueue::Ready(const ThreadState&) {
  if ((wake_mask_ & QS_SENDMESSAGE) != 0 && !sent_.empty()) return true;
  if ((wake_mask_ & QS_POSTMESSAGE) == 0) return false;
  return new_posted_ || (also_old_input_ && (!posted_.empty() || quit_code_));
}

void MessageQueue::WakeOn(DWORD mask, bool also_old_input) {
  wake_mask_ = mask;
  also_old_input_ = also_old_input;
}

bool MessageQueue::Post(KernelLock& lock, const MSG& message) {
  if (posted_.size() >= kMostPosted) return false;
  posted_.push_back({message, NumberFor(message)});
  new_posted_ = true;
  Signal(lock);
  return true;
}

void MessageQueue::PostQuit(int code) {
  quit_code_ = code;
  new_posted_ = true;
}

std::optional<PostedMessage> MessageQueue::Look(const MessageFilter& filter, bool remove) {
  new_posted_ = false;
  const auto matches = [&](const PostedMessage& posted) { return filter.Matches(posted.message); };
  const auto found = std::find_if(posted_.begin(), posted_.end(), matches);
  if (found != posted_.end()) {
    const PostedMessage posted = *found;
    if (remove) posted_.erase(found);
    return posted;
  }
  if (!quit_code_) return std::nullopt;
  PostedMessage quit;
  quit.message.message = WM_QUIT;
  quit.message.wParam = static_cast<WPARAM>(*quit_code_);
  if (remove) quit_code_.reset();
  return quit;
}

void MessageQueue::Send(KernelLock& lock, std::shared_ptr<SentMessage> message) {
  sent_.push_back(std::move(message));
  Signal(lock);
}

std::shared_ptr<SentMessage> MessageQueue::TakeSent() {
  if (sent_.empty()) return nullptr;
  auto message = std::move(sent_.front());
  sent_.pop_front();
  return message;
}

void MessageQueue::Drop(KernelLock& lock, HWND window) {
  const auto is_its = [&](HWND of) { return window == nullptr || of == window; };
  posted_.erase(std::remove_if(posted_.begin(), posted_.end(),
                               [&](const PostedMessage& posted) { return is_its(posted.message.hwnd); }),
                posted_.end());
  for (auto& message : sent_) {
    if (!is_its(message->call().hwnd)) continue;
    message->Answer(lock, std::nullopt);
    message = nullptr;
  }
  sent_.erase(std::remove(sent_.begin(), sent_.end(), nullptr), sent_.end());
}

void MessageQueue::EndThread() {
  KernelLock lock;
  RemoveWindowsOf(*this);
  Drop(lock, nullptr);
}

const std::shared_ptr<MessageQueue>& QueueOf(ThreadState& thread) {
  if (thread.queue == nullptr) thread.queue = std::make_shared<MessageQueue>(thread.id);
  return thread.queue;
}

DWORD WaitWithInput(ThreadState& thread, DWORD wake_mask, bool also_old_input, DWORD milliseconds) {
  const auto& queue = QueueOf(thread);
  {
    KernelLock lock;
    queue->WakeOn(wake_mask, also_old_input);
  }
  thread.waiter.Add(queue);
  return thread.waiter.Wait(false, milliseconds);
}

}  // namespace host
