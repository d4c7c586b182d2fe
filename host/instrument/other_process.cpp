#include "instrument/other_process.h"

#include <windows.h>

#include <future>

#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "common/text/utf.h"

namespace host::instrument {
namespace {

bool Got(DWORD wait_result) { return wait_result == WAIT_OBJECT_0 || wait_result == WAIT_ABANDONED; }

}  // namespace

/// One mutex and the thread that owns it.
class OtherProcess::Holder {
 public:
  Holder(const std::string& name, std::chrono::milliseconds time)
      : owner_(std::async(std::launch::async, [this, name, time] { Own(name, time); })) {}

  bool WaitUntilHeld() { return held_.get_future().get(); }

  ~Holder() {
    give_up_.set_value();
    owner_.wait();
  }

 private:
  void Own(const std::string& name, std::chrono::milliseconds time) {
    const HANDLE mutex = host::CreateMutexW(nullptr, FALSE, Utf8ToWide(name).c_str());
    const bool held = mutex != nullptr && Got(host::WaitForSingleObject(mutex, static_cast<DWORD>(time.count())));
    held_.set_value(held);
    if (held) {
      give_up_.get_future().wait();
      host::ReleaseMutex(mutex);
    }
    if (mutex != nullptr) host::CloseHandle(mutex);
  }

  std::promise<bool> held_;
  std::promise<void> give_up_;
  std::future<void> owner_;  // last: its thread uses the others
};

OtherProcess::OtherProcess() = default;
OtherProcess::~OtherProcess() = default;

bool OtherProcess::Take(const std::string& name, std::chrono::milliseconds time) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (holders_.count(name) != 0) return true;
  }
  auto holder = std::make_shared<Holder>(name, time);
  if (!holder->WaitUntilHeld()) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  // Whoever came first waits for the mutex alone: two holders of one name cannot both have got here.
  holders_.emplace(name, std::move(holder));
  return true;
}

void OtherProcess::Release(const std::string& name) {
  std::shared_ptr<Holder> holder;
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = holders_.find(name);
  if (found == holders_.end()) return;
  holder = std::move(found->second);
  holders_.erase(found);
}

void OtherProcess::ReleaseAll() {
  std::map<std::string, std::shared_ptr<Holder>> all;
  const std::lock_guard<std::mutex> lock(mutex_);
  all.swap(holders_);
}

}  // namespace host::instrument
