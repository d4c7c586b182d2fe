#include "qxsim/application/notify_window.h"

#include "qxsim/line_text.h"

namespace qxsim {

NotifyWindow::NotifyWindow(unsigned number, WindowPlan plan, NotificationLog& log, Services& services)
    : number_(number),
      plan_(std::move(plan)),
      log_(log),
      services_(services),
      window_([this](const WindowMessage& message) { return Handle(message); }) {}

NotifyWindow::~NotifyWindow() { Hurry(); }

void NotifyWindow::Hurry() {
  const std::lock_guard<std::mutex> lock(mutex_);
  hurry_ = true;
  changed_.notify_all();
}

void NotifyWindow::Settle(std::chrono::milliseconds time) {
  if (!busy_) window_.WaitUntilIdle(time);
}

LRESULT NotifyWindow::Handle(const WindowMessage& message) {
  if (message.message < kFirstNotice || message.message > kLastNotice) return 0;
  Notification notification{message.n,      number_,        message.message, message.sent,
                            message.wparam, message.lparam, FetchRecord()};
  log_.Add(std::move(notification));
  Take(plan_.takes_ms);
  if (plan_.closes && message.sent && !closed_) {
    closed_ = true;
    ExportCall call;
    call.name = "QCMCloseComm";
    call.handle = Service();
    services_.Call(call);
  }
  return 0;
}

QCM_HANDLE NotifyWindow::Service() const {
  const QCM_HANDLE followed = service_;
  return followed != 0 ? followed : services_.Own();
}

std::string NotifyWindow::FetchRecord() {
  if (plan_.fetch.empty()) return {};
  ExportCall call;
  call.name = plan_.fetch;
  call.handle = Service();
  const auto fetched = services_.Call(call);
  return fetched ? HexOf(fetched->record.value_or("")) : std::string();
}

void NotifyWindow::Take(std::uint32_t milliseconds) {
  if (milliseconds == 0) return;
  busy_ = true;
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return hurry_; });
  busy_ = false;
}

}  // namespace qxsim
