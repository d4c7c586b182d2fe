// The world around an open service, for tests: application windows on threads of their own, the controller at the other
// end of the serial line, and a machine without faults that keeps its call log.
#ifndef QXTEST_SUPPORT_TEST_APPLICATION_H
#define QXTEST_SUPPORT_TEST_APPLICATION_H

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "common/calls/calls.h"

namespace qxtest {

/// The message number of the instrument's events in these tests, and one for notices.
constexpr UINT kEventMessage = 0x0500;
constexpr UINT kNotice = 0x8123;

/// One message a window received.
struct SeenMessage {
  UINT message;
  WPARAM wparam;
  LPARAM lparam;
  bool sent;  ///< by another thread, which waited for it
};
bool operator==(const SeenMessage& a, const SeenMessage& b);
std::ostream& operator<<(std::ostream& out, const SeenMessage& seen);

/// A window of an application, on a thread of its own that looks for messages until this object goes. Any thread.
class TestWindow {
 public:
  /// Called on the window's thread for each message; its result is the message's.
  using Handler = std::function<LRESULT(UINT message, WPARAM wparam, LPARAM lparam)>;

  explicit TestWindow(Handler handler = nullptr);
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;
  ~TestWindow();

  HWND handle() const { return window_; }

  /// Has the window's thread do some work between two messages. Run waits for it.
  std::future<void> Start(std::function<void()> work);
  void Run(std::function<void()> work) { Start(std::move(work)).get(); }
  /// The window goes; its thread stays.
  void Destroy();

  /// All messages so far; WaitForSeen returns when there are so many of them, or after some seconds.
  std::vector<SeenMessage> seen();
  std::vector<SeenMessage> WaitForSeen(std::size_t count);

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT Take(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  void DoWork();
  void Live(std::promise<void>* ready);

  const Handler handler_;
  HWND window_ = nullptr;
  HWND work_window_ = nullptr;

  std::mutex mutex_;  // guards the two below
  std::deque<std::packaged_task<void()>> work_;
  std::vector<SeenMessage> seen_;
  std::condition_variable seen_changed_;
  std::thread thread_;
};

/// The controller at its end of a serial line. One thread at a time.
class Controller {
 public:
  /// Opens the tty.
  explicit Controller(const std::string& path);
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;
  ~Controller();

  /// Waits until all bytes have gone, some seconds at most.
  void Send(std::string_view bytes);
  /// Sends what the line takes at once; returns how many bytes that were.
  std::size_t TrySend(std::string_view bytes);
  /// What comes until there are so many bytes, or so many ACKs; after some seconds what has come until then.
  std::string Receive(std::size_t bytes);
  std::string ReceiveAcks(std::size_t acks);
  /// What comes up to the end of a frame.
  std::string ReceiveFrame();
  /// What comes until nothing has come for this long.
  std::string ReceiveUntilQuiet(std::chrono::milliseconds quiet);
  /// Sends a command and returns all that comes until its ACK.
  std::string Exchange(std::string_view text);
  /// Waits until the instrument has read all that was sent.
  void WaitUntilRead();

 private:
  template <class Enough>
  std::string ReceiveUntil(Enough enough, std::chrono::milliseconds patience);

  int tty_;
};

/// A clean world for one test: no faults, an empty call log that is on, "COM5:" on a new pty, and an application whose
/// window gets the instrument's events. When it goes it checks that the library has left no thread and no handle.
class World {
 public:
  World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World();

  TestWindow& event_window() { return event_window_; }
  Controller& controller() { return controller_; }

  /// Since the start of the test, or of the last ForgetCalls: the calls in order as "name(argument, ...)", the first
  /// argument of calls on a handle left out.
  std::vector<std::string> Calls();
  /// The same, only the calls with one of these names.
  std::vector<std::string> Calls(const std::vector<std::string>& names);
  void ForgetCalls();

  /// The calls as they stand in the log.
  std::vector<host::CallRecord> Records() const;

 private:
  TestWindow event_window_;
  Controller controller_;
  std::uint64_t calls_begin_ = 0;
  std::size_t handles_ = 0;
};

constexpr std::uint64_t kForGood = 1000000000;

/// Makes a call of the platform fail, from the nth one on, so many times. All faults end with any of these objects.
class Failing {
 public:
  explicit Failing(const std::string& call, std::uint32_t error = ERROR_NOT_ENOUGH_MEMORY, std::uint64_t nth = 1,
                   std::uint64_t times = 1);
  Failing(const Failing&) = delete;
  Failing& operator=(const Failing&) = delete;
  ~Failing() { host::ClearFaults(); }
};

/// Makes a call of the platform return this result without being made, for as long as the object lives.
class Returning {
 public:
  Returning(const std::string& call, std::int64_t result);
  Returning(const Returning&) = delete;
  Returning& operator=(const Returning&) = delete;
  ~Returning() { host::ClearFaults(); }
};

/// Waits until the condition holds; false when it does not within some seconds.
bool WaitUntil(const std::function<bool()>& condition);

/// Ends the process with a message when it still lives after so many seconds: what hangs shall fail, and soon.
class Watchdog {
 public:
  explicit Watchdog(std::chrono::seconds limit = std::chrono::seconds(30));
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;
  ~Watchdog();

 private:
  std::promise<void> done_;
  std::thread thread_;
};

}  // namespace qxtest

#endif
