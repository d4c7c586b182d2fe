// The ring of command texts.
#include "protocol/command_queue.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace qxcm {

namespace {
using Length = std::uint16_t;  // a text is shorter than a frame
constexpr std::size_t kFirstRing = 4096;
}  // namespace

void CommandQueue::Push(std::string_view text) {
  const auto length = static_cast<Length>(text.size());
  const std::size_t needed = sizeof length + text.size();
  Guard guard(lock_);
  if (texts_ == kMostTexts || used_ + needed > kMostBytes || length != text.size()) return;
  Grow(needed);
  CopyIn(reinterpret_cast<const char*>(&length), sizeof length);
  CopyIn(text.data(), text.size());
  if (texts_++ == 0) message_event_.Set();
}

bool CommandQueue::Pop(std::string& text) {
  Guard guard(lock_);
  if (texts_ == 0) {
    message_event_.Reset();
    return false;
  }
  Length length = 0;
  CopyOut(reinterpret_cast<char*>(&length), sizeof length);
  text.resize(length);
  CopyOut(text.data(), length);
  if (--texts_ == 0) message_event_.Reset();
  return true;
}

std::size_t CommandQueue::size() {
  Guard guard(lock_);
  return texts_;
}

void CommandQueue::Grow(std::size_t needed) {
  if (used_ + needed <= ring_.size()) return;
  std::size_t size = std::max(kFirstRing, ring_.size());
  while (size < used_ + needed) size *= 2;
  std::vector<char> ring(size);
  const std::size_t used = used_;
  CopyOut(ring.data(), used);
  ring_.swap(ring);
  front_ = 0;
  used_ = used;
}

void CommandQueue::CopyIn(const char* bytes, std::size_t count) {
  if (count == 0) return;
  const std::size_t back = (front_ + used_) % ring_.size();
  const std::size_t first = std::min(count, ring_.size() - back);
  std::memcpy(&ring_[back], bytes, first);
  std::memcpy(ring_.data(), bytes + first, count - first);
  used_ += count;
}

void CommandQueue::CopyOut(char* bytes, std::size_t count) {
  if (count == 0) return;
  const std::size_t first = std::min(count, ring_.size() - front_);
  std::memcpy(bytes, &ring_[front_], first);
  std::memcpy(bytes + first, ring_.data(), count - first);
  front_ = (front_ + count) % ring_.size();
  used_ -= count;
}

}  // namespace qxcm
