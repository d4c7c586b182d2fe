#include "qxsim/application/notifications.h"

#include <algorithm>

#include "common/calls/calls.h"

namespace qxsim {
namespace {

bool Earlier(const Notification& notification, std::uint64_t n) { return notification.n < n; }

}  // namespace

void NotificationLog::Add(Notification notification) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (notification.n < told_before_) notification.n = host::TakeCallNumber();
  if (observer_) observer_(notification);
  // A notice has its number from when it was given: two windows may come up with theirs in the other order.
  const auto place = std::lower_bound(kept_.begin(), kept_.end(), notification.n, Earlier);
  kept_.insert(place, std::move(notification));
  if (kept_.size() > kMostNotifications) kept_.pop_front();
}

std::vector<Notification> NotificationLog::Tell(std::uint64_t since, std::uint64_t before) {
  const std::lock_guard<std::mutex> lock(mutex_);
  told_before_ = std::max(told_before_, before);
  const auto first = std::lower_bound(kept_.begin(), kept_.end(), since, Earlier);
  const auto last = std::lower_bound(first, kept_.end(), before, Earlier);
  return {first, last};
}

}  // namespace qxsim
