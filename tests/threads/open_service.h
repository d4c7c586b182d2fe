// An open service whose commands can be made to send a notice, for the tests of threads and locks.
#ifndef QXTEST_THREADS_OPEN_SERVICE_H
#define QXTEST_THREADS_OPEN_SERVICE_H

#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <mutex>

#include "api/open_services.h"
#include "common/calls/calls.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace qxtest {

constexpr WPARAM kDistanceRequest = 256;

/// Given once, by one thread to another.
class Signal {
 public:
  void Give() { promise_.set_value(); }
  void Wait() { EXPECT_EQ(future_.wait_for(kPatience), std::future_status::ready); }

 private:
  std::promise<void> promise_;
  std::future<void> future_ = promise_.get_future();
};

/// A service opened through the exports. It is closed at the end unless the test has closed it.
class OpenService {
 public:
  explicit OpenService(const QCM_WCHAR* port = u"COM5:") : handle_(QCMOpenComm(port)) { EXPECT_NE(handle_, 0u); }
  OpenService(const OpenService&) = delete;
  OpenService& operator=(const OpenService&) = delete;
  ~OpenService() { QCMCloseComm(handle_); }

  QCM_HANDLE handle() const { return handle_; }
  /// Null once it is being closed.
  std::shared_ptr<qxcm::CommManager> manager() const { return qxcm::OpenServices::Instance().Find(handle_); }
  bool IsBeingClosed() const {
    return WaitUntil([this] { return manager() == nullptr; });
  }

 private:
  const QCM_HANDLE handle_;
};

/// Calls a function on the dispatcher thread of any service for every command it carries out, before the command's
/// handler and with no lock held: where the handler of a distance request sends its notice. Made before the services.
class OnEveryCommand {
 public:
  explicit OnEveryCommand(std::function<void()> work) {
    host::SetCallObserver([work = std::move(work)](const host::CallRecord& record) {
      if (record.call == host::CallValue("SystemIdleTimerReset")) work();
    });
  }
  OnEveryCommand(const OnEveryCommand&) = delete;
  OnEveryCommand& operator=(const OnEveryCommand&) = delete;
  ~OnEveryCommand() { host::SetCallObserver(nullptr); }
};

/// Has every command send a distance request to the windows of one service first.
class NoticeOnEveryCommand {
 public:
  void To(const OpenService& service) {
    const std::lock_guard<std::mutex> lock(mutex_);
    manager_ = service.manager();
  }

 private:
  void Send() {
    std::shared_ptr<qxcm::CommManager> manager;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      manager = manager_.lock();
    }
    // The raw pointer outlives its use: a service outlives its dispatcher.
    qxcm::CommManager* const service = manager.get();
    manager.reset();
    if (service != nullptr) service->SendNotification(kDistanceRequest, 0);
  }

  std::mutex mutex_;
  std::weak_ptr<qxcm::CommManager> manager_;  // guarded by mutex_
  OnEveryCommand hook_{[this] { Send(); }};
};

}  // namespace qxtest

#endif
