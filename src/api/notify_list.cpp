// Registration of notify windows and the two walks over them.
#include "api/notify_list.h"

#include <algorithm>
#include <cstddef>

#include "QXCommMgr.h"
#include "platform/lock.h"

namespace qxcm {

namespace {
constexpr UINT kFirstMessage = 0x8000;
constexpr UINT kLastMessage = 0xBFFF;
}  // namespace

std::vector<NotifyList::Entry>::iterator NotifyList::Find(HWND window) {
  return std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.window == window; });
}

std::int32_t NotifyList::Register(HWND window, UINT message) {
  if (IsWindow(window) == FALSE) return QCM_BAD_ARGUMENT;
  if (message < kFirstMessage || message > kLastMessage) return QCM_BAD_ARGUMENT;
  Guard guard(lock_);
  const auto entry = Find(window);
  if (entry == entries_.end()) {
    entries_.push_back({window, message});
  } else {
    entry->message = message;
  }
  return QCM_OK;
}

std::int32_t NotifyList::Unregister(HWND window) {
  Guard guard(lock_);
  const auto entry = Find(window);
  if (entry == entries_.end()) return QCM_NOTHING_RECORDED;
  entries_.erase(entry);
  return QCM_OK;
}

template <class Deliver>
void NotifyList::Walk(Deliver deliver) {
  Guard guard(lock_);
  if (closing_.load(std::memory_order_acquire)) return;
  for (std::size_t i = 0; i < entries_.size();) {
    const Entry entry = entries_[i];
    if (IsWindow(entry.window) == FALSE) {
      entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
    } else {
      deliver(entry);
      ++i;
    }
  }
}

void NotifyList::Post(WPARAM code, LPARAM detail) {
  Walk([&](const Entry& entry) { PostMessageW(entry.window, entry.message, code, detail); });
}

void NotifyList::Send(WPARAM code, LPARAM detail) {
  Walk([&](const Entry& entry) { SendTo(entry, code, detail); });
}

void NotifyList::SendTo(const Entry& entry, WPARAM code, LPARAM detail) {
  if (closing_.load(std::memory_order_acquire)) return;  // a window of this walk has closed the service
  receiving_thread_.store(GetWindowThreadProcessId(entry.window, nullptr), std::memory_order_release);
  SendMessageW(entry.window, entry.message, code, detail);
  receiving_thread_.store(0, std::memory_order_release);
}

bool NotifyList::IsSendingToThisThread() const {
  return receiving_thread_.load(std::memory_order_acquire) == GetCurrentThreadId() && InSendMessage() != FALSE;
}

}  // namespace qxcm
