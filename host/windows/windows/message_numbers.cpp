#include "windows/windows/message_numbers.h"

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <utility>

#include "common/calls/calls.h"
#include "common/calls/errors.h"
#include "common/windows/windows_messages.h"

namespace host {
namespace {

using Waiting = SentNumber::Waiting;

struct Numbers {
  std::mutex mutex;
  std::unordered_map<HWND, std::deque<Waiting>> posted;  // guarded by mutex
  std::list<Waiting> sent;                               // guarded by mutex; a number taken is 0
};

Numbers& TheNumbers() {
  static auto* numbers = new Numbers;  // threads may outlive the end of main
  return *numbers;
}

thread_local std::uint64_t taken_last = 0;

template <class List>
auto Find(List& list, const Message& message) {
  return std::find_if(list.begin(), list.end(),
                      [&](const Waiting& waiting) { return waiting.number != 0 && waiting.message == message; });
}

}  // namespace

bool operator==(const Message& left, const Message& right) {
  return left.window == right.window && left.message == right.message && left.wparam == right.wparam &&
         left.lparam == right.lparam;
}

bool HasNumber(UINT message) { return message >= WM_APP && message <= 0xBFFF; }

// Under the lock, so that the number is there when the message is taken.
BOOL PostNumbered(const Message& message) {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  auto& waiting = numbers.posted[message.window];
  if (waiting.size() >= kMostPosted) return Fail(ERROR_NOT_ENOUGH_QUOTA, FALSE);
  const std::uint64_t number = TakeCallNumber();
  if (::PostMessageW(message.window, message.message, message.wparam, message.lparam) == FALSE) return FALSE;
  waiting.push_back({message, number});
  return TRUE;
}

void DropPosted(HWND window) {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  numbers.posted.erase(window);
}

SentNumber::SentNumber(const Message& message) {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  place_ = numbers.sent.insert(numbers.sent.end(), {message, HasNumber(message.message) ? TakeCallNumber() : 0});
}

SentNumber::~SentNumber() {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  numbers.sent.erase(place_);
}

void TookPosted(const Message& message) {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  taken_last = 0;
  const auto window = numbers.posted.find(message.window);
  if (window == numbers.posted.end()) return;
  const auto found = Find(window->second, message);
  if (found == window->second.end()) return;
  taken_last = found->number;
  window->second.erase(found);
}

// What a procedure passes on to the one before it comes here twice: the number stays.
void TookSent(const Message& message) {
  Numbers& numbers = TheNumbers();
  const std::lock_guard<std::mutex> lock(numbers.mutex);
  if (!HasNumber(message.message)) taken_last = 0;
  const auto found = Find(numbers.sent, message);
  if (found != numbers.sent.end()) taken_last = std::exchange(found->number, 0);
}

std::uint64_t MessageNumber() { return taken_last; }

}  // namespace host
