// Application windows, the controller's tty and the world of a test.
#include "support/test_application.h"

#include <QXCommMgr.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "common/calls/ce_calls.h"
#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "common/sync/sync.h"
#include "common/windows/windows_messages.h"
#include "instrument/event_window.h"
#include "support/memory_link.h"

namespace qxtest {

namespace {

constexpr WCHAR kClassName[] = TEXT("QxTestWindow");
constexpr UINT kWork = WM_USER;

HWND MakeWindow(WNDPROC procedure) {
  WNDCLASSW window_class = {};
  window_class.lpfnWndProc = procedure;
  window_class.lpszClassName = kClassName;
  host::RegisterClassW(&window_class);  // the second time it is there already
  return host::CreateWindowExW(0, kClassName, TEXT(""), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}

}  // namespace

bool operator==(const SeenMessage& a, const SeenMessage& b) {
  return a.message == b.message && a.wparam == b.wparam && a.lparam == b.lparam && a.sent == b.sent;
}

std::ostream& operator<<(std::ostream& out, const SeenMessage& seen) {
  return out << (seen.sent ? "sent " : "posted ") << seen.message << ' ' << seen.wparam << ' ' << seen.lparam;
}

// ---- TestWindow

TestWindow::TestWindow(Handler handler) : handler_(std::move(handler)) {
  std::promise<void> ready;
  thread_ = std::thread([this, &ready] { Live(&ready); });
  ready.get_future().wait();
}

TestWindow::~TestWindow() {
  Start([] { host::PostQuitMessage(0); });
  thread_.join();
}

void TestWindow::Live(std::promise<void>* ready) {
  for (HWND* window : {&window_, &work_window_}) {
    *window = MakeWindow(&Procedure);
    host::SetWindowLongW(*window, GWL_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ready->set_value();
  MSG message;
  while (host::GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (message.hwnd == work_window_ && message.message == kWork) {
      DoWork();
    } else {
      host::DispatchMessageW(&message);
    }
  }
  Destroy();
  host::DestroyWindow(work_window_);
}

LRESULT CALLBACK TestWindow::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* self = reinterpret_cast<TestWindow*>(host::GetWindowLongW(window, GWL_USERDATA));
  return self == nullptr ? 0 : self->Take(window, message, wparam, lparam);
}

LRESULT TestWindow::Take(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (window != window_ || message == WM_DESTROY) return 0;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    seen_.push_back({message, wparam, lparam, host::InSendMessage() != FALSE});
    seen_changed_.notify_all();
  }
  return handler_ == nullptr ? 0 : handler_(message, wparam, lparam);
}

// Work is done from the message loop, never while a sent message is handled.
void TestWindow::DoWork() {
  std::packaged_task<void()> work;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    work = std::move(work_.front());
    work_.pop_front();
  }
  work();
}

std::future<void> TestWindow::Start(std::function<void()> work) {
  std::packaged_task<void()> task(std::move(work));
  std::future<void> done = task.get_future();
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    work_.push_back(std::move(task));
  }
  host::PostMessageW(work_window_, kWork, 0, 0);
  return done;
}

void TestWindow::Destroy() {
  if (std::this_thread::get_id() == thread_.get_id()) {
    host::DestroyWindow(window_);
  } else {
    Run([this] { host::DestroyWindow(window_); });
  }
}

std::vector<SeenMessage> TestWindow::seen() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return seen_;
}

std::vector<SeenMessage> TestWindow::WaitForSeen(std::size_t count) {
  std::unique_lock<std::mutex> lock(mutex_);
  seen_changed_.wait_for(lock, kPatience, [&] { return seen_.size() >= count; });
  return seen_;
}

// ---- Controller

Controller::Controller(const std::string& path) : tty_(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
  if (tty_ < 0) throw std::system_error(errno, std::generic_category(), path);
}

Controller::~Controller() { close(tty_); }

std::size_t Controller::TrySend(std::string_view bytes) {
  const ssize_t count = write(tty_, bytes.data(), bytes.size());
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

void Controller::Send(std::string_view bytes) {
  pollfd writable = {tty_, POLLOUT, 0};
  while (!bytes.empty() && poll(&writable, 1, static_cast<int>(std::chrono::milliseconds(kPatience).count())) > 0) {
    bytes.remove_prefix(TrySend(bytes));
  }
  EXPECT_TRUE(bytes.empty()) << bytes.size() << " bytes could not be sent";
}

template <class Enough>
std::string Controller::ReceiveUntil(Enough enough, std::chrono::milliseconds patience) {
  std::string received;
  char buffer[4096];
  pollfd readable = {tty_, POLLIN, 0};
  while (!enough(received) && poll(&readable, 1, static_cast<int>(patience.count())) > 0) {
    const ssize_t count = read(tty_, buffer, sizeof buffer);
    if (count <= 0) break;
    received.append(buffer, static_cast<std::size_t>(count));
  }
  return received;
}

std::string Controller::Receive(std::size_t bytes) {
  return ReceiveUntil([&](const std::string& received) { return received.size() >= bytes; }, kPatience);
}

std::string Controller::ReceiveAcks(std::size_t acks) {
  const auto enough = [&](const std::string& received) {
    return static_cast<std::size_t>(std::count(received.begin(), received.end(), kAck.front())) >= acks;
  };
  return ReceiveUntil(enough, kPatience);
}

std::string Controller::ReceiveFrame() {
  return ReceiveUntil([](const std::string& received) { return !received.empty() && received.back() == '\r'; },
                      kPatience);
}

std::string Controller::ReceiveUntilQuiet(std::chrono::milliseconds quiet) {
  return ReceiveUntil([](const std::string&) { return false; }, quiet);
}

std::string Controller::Exchange(std::string_view text) {
  Send(CommandFrame(text));
  return ReceiveAcks(1);
}

void Controller::WaitUntilRead() {
  EXPECT_TRUE(WaitUntil([this] {
    int waiting = -1;
    return ioctl(tty_, TIOCOUTQ, &waiting) == 0 && waiting == 0;
  }));
}

// ---- World

namespace {

// What the library makes once and keeps is made before handles are counted.
std::size_t HandlesWhenIdle() {
  static const bool warm = [] { return QCMCloseComm(QCMOpenComm(TEXT("COM5:"))) == QCM_OK; }();
  EXPECT_TRUE(warm) << "no service could be opened";
  return host::LibraryHandles();
}

std::string ValueText(const host::CallValue& value) {
  if (std::holds_alternative<std::nullptr_t>(value)) return "null";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* real = std::get_if<double>(&value)) return std::to_string(*real);
  return std::get<std::string>(value);
}

// Handles differ from run to run.
bool BeginsWithAHandle(const std::string& call) {
  return call.find("Comm") != std::string::npos || call == "WriteFile" || call == "ReadFile" || call == "CloseHandle";
}

std::string CallText(const host::CallRecord& record) {
  std::string text = ValueText(record.call) + "(";
  for (std::size_t i = BeginsWithAHandle(ValueText(record.call)) ? 1 : 0; i < record.args.size(); ++i) {
    if (text.back() != '(') text += ", ";
    text += ValueText(record.args[i]);
  }
  return text + ")";
}

std::string NewPty() {
  host::ClearFaults();
  host::EnableCallLog(false);
  return host::AttachPty("COM5:");
}

}  // namespace

World::World() : controller_(NewPty()) {
  host::instrument::SetEventWindow(event_window_.handle(), kEventMessage);
  handles_ = HandlesWhenIdle();
  host::EnableCallLog(true);
  ForgetCalls();
}

World::~World() {
  host::ClearFaults();
  EXPECT_TRUE(WaitUntil([] { return host::LibraryThreads() == 0; })) << host::LibraryThreads() << " threads are left";
  EXPECT_EQ(host::LibraryHandles(), handles_) << "handles are left";
  host::EnableCallLog(false);
  host::instrument::ResetEventWindow();
  host::DetachPort("COM5:");
  host::DetachPort("COMBT:");
}

std::vector<host::CallRecord> World::Records() const { return host::CallsSince(calls_begin_, nullptr); }

std::vector<std::string> World::Calls() {
  std::vector<std::string> calls;
  for (const host::CallRecord& record : Records()) calls.push_back(CallText(record));
  return calls;
}

std::vector<std::string> World::Calls(const std::vector<std::string>& names) {
  std::vector<std::string> calls;
  for (const host::CallRecord& record : Records()) {
    const std::string name = ValueText(record.call);
    if (std::find(names.begin(), names.end(), name) != names.end()) calls.push_back(CallText(record));
  }
  return calls;
}

void World::ForgetCalls() { calls_begin_ = host::TakeCallNumber() + 1; }

Failing::Failing(const std::string& call, std::uint32_t error, std::uint64_t nth, std::uint64_t times) {
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = call;
  fault.nth = nth;
  fault.times = times;
  fault.error = error;
  host::AddFault(fault);
}

Returning::Returning(const std::string& call, std::int64_t result) {
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = call;
  fault.times = kForGood;
  fault.result = result;
  host::AddFault(fault);
}

bool WaitUntil(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

// ---- Watchdog

Watchdog::Watchdog(std::chrono::seconds limit) {
  thread_ = std::thread([limit, done = done_.get_future()]() mutable {
    if (done.wait_for(limit) == std::future_status::ready) return;
    std::fprintf(stderr, "the test hangs\n");
    std::_Exit(EXIT_FAILURE);
  });
}

Watchdog::~Watchdog() {
  done_.set_value();
  thread_.join();
}

}  // namespace qxtest
