// A link in memory, with the controller's end of it in the test's hands; and the frames a controller sends and awaits.
#ifndef QXTEST_SUPPORT_MEMORY_LINK_H
#define QXTEST_SUPPORT_MEMORY_LINK_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "link/link.h"

namespace qxtest {

/// Each text as it stands between "<" and ">", with its checksum and CR. Worked out without the library's codec.
std::string CommandFrame(std::string_view text);
std::string ReplyFrame(std::string_view text);
std::string MessageFrame(std::string_view text);

constexpr char kEnq = 0x05;
constexpr std::string_view kAck = "\x06";
constexpr std::string_view kNak = "\x15";

/// How long a test waits for what must come.
constexpr std::chrono::seconds kPatience{20};

/// The controller's end. It outlives the link, which is made by MakeLink and given to a service. Any thread.
class MemoryLine {
 public:
  MemoryLine() = default;
  MemoryLine(const MemoryLine&) = delete;
  MemoryLine& operator=(const MemoryLine&) = delete;

  /// The instrument's end; one at a time, and this line must outlive it.
  std::unique_ptr<qxcm::Link> MakeLink();

  /// Hands the bytes to the service on the calling thread, which plays the reader thread. Lost while the port is
  /// closed.
  void Send(std::string_view bytes);

  /// What the service has written since it was last asked for.
  std::string Take();
  /// The same, once it holds so many ACK bytes; after kPatience with what has come until then.
  std::string TakeWithAcks(std::size_t acks);
  /// Sends a command and returns all that comes until its ACK.
  std::string Exchange(std::string_view text);

  /// While set, opening fails.
  void RefuseToOpen(bool refuse);
  bool is_open();
  /// The port last opened, as UTF-8 (ASCII), and how often opening was asked for.
  std::string port();
  int opens();

 private:
  friend class MemoryLink;

  std::mutex mutex_;  // guards all below
  std::condition_variable written_;
  std::string sent_;  // by the service
  std::size_t acks_ = 0;
  bool open_ = false;
  bool refuse_ = false;
  int opens_ = 0;
  std::string port_;
  std::string received_;  // not yet taken by the service

  std::mutex delivering_;  // held while bytes are handed over: closing waits for it, as for a reader thread
  class MemoryLink* link_ = nullptr;
};

}  // namespace qxtest

#endif
