// The two reference programs.
#include "reference_programs.h"

#include <unistd.h>

#include <cstring>
#include <utility>

namespace qxbench {

namespace {

constexpr char kEnd = '\r';
constexpr char kQuit = 'Q';  // a frame that begins with it ends the program

/// Reads up to and including one frame end; false when it was the quitting frame.
bool ReadFrame(int fd, std::string& frame) {
  char buffer[512];
  frame.clear();
  while (frame.empty() || frame.back() != kEnd) {
    const auto got = read(fd, buffer, sizeof buffer);
    if (got <= 0) return false;
    frame.append(buffer, static_cast<std::size_t>(got));
  }
  return frame.front() != kQuit;
}

void WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = write(fd, bytes.data(), bytes.size());
    if (written <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void Quit(const Pty& pty) { WriteAll(pty.keep_open, {"Q\r", 2}); }

}  // namespace

FloorRaw::FloorRaw(std::string_view answer) : answer_(answer), thread_([this] { Run(); }) {}

FloorRaw::~FloorRaw() {
  Quit(pty_);
  thread_.join();
}

void FloorRaw::Run() {
  std::string frame;
  while (ReadFrame(pty_.master, frame)) WriteAll(pty_.master, answer_);
}

FloorHops::FloorHops(std::string_view answer)
    : answer_(answer), reader_([this] { Read(); }), worker_([this] { Work(); }), writer_([this] { Write(); }) {}

FloorHops::~FloorHops() {
  Quit(pty_);
  reader_.join();
  worker_.join();
  writer_.join();
}

void FloorHops::Queue::Push(std::string text) {
  {
    std::lock_guard guard(mutex_);
    texts_.push_back(std::move(text));
  }
  filled_.notify_one();
}

std::string FloorHops::Queue::Pop() {
  std::unique_lock guard(mutex_);
  filled_.wait(guard, [this] { return !texts_.empty(); });
  std::string text = std::move(texts_.front());
  texts_.pop_front();
  return text;
}

void FloorHops::Read() {
  std::string frame;
  while (ReadFrame(pty_.master, frame)) received_.Push(frame);
  received_.Push({});
}

void FloorHops::Work() {
  while (!received_.Pop().empty()) to_send_.Push(answer_);
  to_send_.Push({});
}

void FloorHops::Write() {
  for (std::string text = to_send_.Pop(); !text.empty(); text = to_send_.Pop()) WriteAll(pty_.master, text);
}

}  // namespace qxbench
