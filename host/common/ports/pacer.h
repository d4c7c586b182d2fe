// One direction of a paced line: when a byte has come through at the line's speed.
#ifndef QXHOST_COMMON_PORTS_PACER_H
#define QXHOST_COMMON_PORTS_PACER_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>

namespace host {

/// Counts bytes against time, without a clock or a thread of its own. While bytes wait without a pause the rate is
/// exact however late the calls come; after a pause the line starts anew, with at most kCatchUp of credit.
/// Not locked: the owner's lock guards it.
class Pacer {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::nanoseconds kCatchUp = std::chrono::milliseconds(1);

  /// How many of the `waiting` bytes have come through by `now`. With none waiting, the line is at rest from here on.
  std::size_t Ready(std::size_t waiting, std::uint32_t baud, Clock::time_point now);

  /// Bytes of those ready have been passed on.
  void Take(std::size_t bytes, std::uint32_t baud);

  /// When the first few of the `waiting` bytes will have come through: a millisecond's worth, or all if fewer.
  Clock::time_point NextReady(std::size_t waiting, std::uint32_t baud) const;

 private:
  bool at_rest_ = true;
  Clock::time_point next_byte_{};  // when the next byte begins
};

/// One direction of the ports' line at the speed that ports are held to. Any thread.
class PacedWay {
 public:
  using Clock = Pacer::Clock;

  struct Allowance {
    std::size_t bytes;             ///< that may pass now
    Clock::time_point look_again;  ///< with none: when some may
  };

  /// For bytes that wait to pass at this speed, which is not 0.
  Allowance Ready(std::size_t waiting, std::uint32_t baud);
  /// Bytes have passed; nothing to do when ports are held to no speed.
  void Passed(std::size_t bytes);
  /// Nothing waits from here on; likewise.
  void Rest();

 private:
  std::mutex mutex_;
  Pacer pacer_;  // guarded by mutex_
};

}  // namespace host

#endif
