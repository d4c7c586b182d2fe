#include "common/ports/pacer.h"

#include <algorithm>

#include "common/ports/port_options.h"

namespace host {
namespace {

constexpr int kBitsPerByte = 10;  // start bit, eight data bits, stop bit

std::chrono::nanoseconds TimeOf(std::size_t bytes, std::uint32_t baud) {
  return std::chrono::nanoseconds(bytes * kBitsPerByte * std::uint64_t{1000000000} / baud);
}

std::size_t BytesIn(std::chrono::nanoseconds time, std::uint32_t baud) {
  return static_cast<std::size_t>(time.count()) * baud / (kBitsPerByte * std::uint64_t{1000000000});
}

}  // namespace

std::size_t Pacer::Ready(std::size_t waiting, std::uint32_t baud, Clock::time_point now) {
  if (waiting == 0) {
    at_rest_ = true;
    return 0;
  }
  // The line has been busy no longer than what waits has taken.
  const std::chrono::nanoseconds busy = at_rest_ ? std::chrono::nanoseconds(0) : TimeOf(waiting, baud);
  next_byte_ = std::max(next_byte_, now - busy - kCatchUp);
  at_rest_ = false;
  return now <= next_byte_ ? 0 : std::min(waiting, BytesIn(now - next_byte_, baud));
}

void Pacer::Take(std::size_t bytes, std::uint32_t baud) { next_byte_ += TimeOf(bytes, baud); }

Pacer::Clock::time_point Pacer::NextReady(std::size_t waiting, std::uint32_t baud) const {
  const std::size_t few = std::max<std::size_t>(1, BytesIn(std::chrono::milliseconds(1), baud));
  // Rounded up: woken a nanosecond early, the last byte would not count as through.
  return next_byte_ + TimeOf(std::min(waiting, few), baud) + std::chrono::nanoseconds(1);
}

PacedWay::Allowance PacedWay::Ready(std::size_t waiting, std::uint32_t baud) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const std::size_t bytes = pacer_.Ready(waiting, baud, Clock::now());
  return {bytes, bytes == 0 && waiting != 0 ? pacer_.NextReady(waiting, baud) : Clock::time_point::max()};
}

void PacedWay::Passed(std::size_t bytes) {
  const std::uint32_t baud = PortPace();
  if (baud == 0) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  pacer_.Take(bytes, baud);
}

void PacedWay::Rest() {
  const std::uint32_t baud = PortPace();
  if (baud != 0) Ready(0, baud);
}

}  // namespace host
