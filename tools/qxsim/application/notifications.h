// What the application's windows received: the newest notices, numbered together with the library's calls.
#ifndef QXSIM_APPLICATION_NOTIFICATIONS_H
#define QXSIM_APPLICATION_NOTIFICATIONS_H

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace qxsim {

struct Notification {
  std::uint64_t n = 0;
  unsigned window = 0;  ///< the application's number for it
  std::uint32_t message = 0;
  bool sent = false;  ///< else posted
  std::uint64_t wparam = 0;
  std::int64_t lparam = 0;
  std::string record;  ///< hex of what the window fetched; empty = nothing
};

constexpr std::size_t kMostNotifications = 16384;

/// A bounded list; the oldest go first. Any thread.
class NotificationLog {
 public:
  using Observer = std::function<void(const Notification&)>;

  /// The observer is called for every notice, on the window's thread. Set it before the first window is made.
  explicit NotificationLog(Observer observer) : observer_(std::move(observer)) {}

  void Add(Notification notification);
  /// Tells those with since <= n < before, in the order of n. One that comes in later with a number told already
  /// gets a new one, so that whoever asks for what follows misses none.
  std::vector<Notification> Tell(std::uint64_t since, std::uint64_t before);

 private:
  const Observer observer_;
  std::mutex mutex_;               // guards the two below
  std::deque<Notification> kept_;  // in the order of n
  std::uint64_t told_before_ = 0;
};

}  // namespace qxsim

#endif
