#include "qxsim/application/application.h"

#include <algorithm>
#include <chrono>

#include "common/calls/calls.h"
#include "instrument/event_window.h"

namespace qxsim {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostHandles = 4096;
constexpr milliseconds kSettleTime{200};

HWND MakeDeadWindow() {
  const AppWindow window([](const WindowMessage&) -> LRESULT { return 0; });
  return window.handle();
}

milliseconds TimeUntil(Clock::time_point deadline) {
  return std::max(milliseconds(0), std::chrono::duration_cast<milliseconds>(deadline - Clock::now()));
}

}  // namespace

Application::Application(NotificationLog::Observer observer)
    : notifications_(std::move(observer)),
      dead_window_(MakeDeadWindow()),
      event_window_([this](const WindowMessage& message) { return HandleEventWindow(message); }) {
  handles_[kEventWindowNumber] = event_window_.handle();
  NameEventWindow(event_message_, true);
}

Application::~Application() {
  CloseServices();
  host::instrument::ResetEventWindow();
}

void Application::CloseServices() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [number, window] : windows_) window->Hurry();
  }
  services_.CloseAll();
}

unsigned Application::MakeWindow(WindowPlan plan) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (windows_.size() >= kMostWindows) return 0;
  const unsigned number = ++last_number_;
  auto window = std::make_unique<NotifyWindow>(number, std::move(plan), notifications_, services_);
  handles_[number] = window->handle();
  if (handles_.size() > kMostHandles) handles_.erase(std::next(handles_.begin()));
  windows_[number] = std::move(window);
  return number;
}

bool Application::DestroyWindow(unsigned number) {
  std::unique_ptr<NotifyWindow> window;  // destroyed without the lock: it may have something to finish
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = windows_.find(number);
  if (found == windows_.end()) return false;
  window = std::move(found->second);
  windows_.erase(found);
  return true;
}

HWND Application::Find(std::uint64_t number) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (number > last_number_) return dead_window_;
  const auto window = windows_.find(static_cast<unsigned>(number));
  if (window != windows_.end()) return window->second->handle();
  const auto found = handles_.find(static_cast<unsigned>(number));
  return found == handles_.end() ? dead_window_ : found->second;
}

void Application::FollowService(HWND window, QCM_HANDLE service) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const auto& [number, candidate] : windows_) {
    if (candidate->handle() == window) candidate->FollowService(service);
  }
}

std::vector<Notification> Application::NotificationsSince(std::uint64_t since, std::uint64_t* next) {
  const std::uint64_t before = host::TakeCallNumber();
  const auto deadline = Clock::now() + kSettleTime;
  event_window_.WaitUntilIdle(kSettleTime);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [number, window] : windows_) window->Settle(TimeUntil(deadline));
  }
  *next = std::max(since, before);
  return notifications_.Tell(since, before);
}

void Application::NameEventWindow(UINT message, bool exists) {
  event_message_ = message;
  event_window_exists_ = exists;
  host::instrument::SetEventWindow(exists ? event_window_.handle() : dead_window_, message);
}

LRESULT Application::HandleEventWindow(const WindowMessage& message) {
  if (message.message == host::instrument::EventMessage()) {
    if (event_window_.Subclassed()) ++previous_called_;
  } else if (message.message >= kFirstNotice && message.message <= kLastNotice) {
    notifications_.Add(
        {message.n, kEventWindowNumber, message.message, message.sent, message.wparam, message.lparam, {}});
  }
  return 0;
}

}  // namespace qxsim
