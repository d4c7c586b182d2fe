// One open service: its link, its dispatcher, its notify windows and request records.
#ifndef QXCM_API_COMM_MANAGER_H
#define QXCM_API_COMM_MANAGER_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "api/notify_list.h"
#include "api/request_records.h"
#include "commands/instrument/devices/i2c_bus.h"
#include "commands/measure/focus.h"
#include "commands/measure/measured_data.h"
#include "commands/services/battery.h"
#include "commands/services/open_file_table.h"
#include "link/link.h"
#include "platform/lock.h"
#include "platform/text.h"
#include "protocol/command_processor.h"
#include "protocol/frame_assembler.h"
#include "protocol/service.h"

namespace qxcm {

/// Made by OpenServices and shared by whoever works with it; Shutdown ends it, after which calls do nothing or answer
/// QCM_NO_SERVICE. Any thread, unless a function says otherwise.
class CommManager final : public Service {
 public:
  /// Opens the service on a port over `link`. Throws std::logic_error "null pointer." for a missing name,
  /// i2c_io_exception "cannot open I2C port.", comm_io_exception "cannot open port.", and std::runtime_error when the
  /// Bluetooth radio cannot be switched on or the platform lacks something else.
  CommManager(LPCWSTR port_name, std::unique_ptr<Link> link);
  CommManager(const CommManager&) = delete;
  CommManager& operator=(const CommManager&) = delete;
  ~CommManager();

  /// From now on every export answers QCM_NO_SERVICE.
  void MarkClosing() { closing_.store(true, std::memory_order_release); }
  bool closing() const { return closing_.load(std::memory_order_acquire); }

  /// Tells the dispatcher to end, waits until it has or until a window holds it up, and closes the link. May take as
  /// long as a command and a write in progress; messages sent to the calling thread's windows are handled meanwhile.
  void Shutdown();
  /// After Shutdown: waits until the service's threads have ended; messages sent to the calling thread's windows are
  /// handled meanwhile. False when the dispatcher waits for a window to handle a notice, and that window is the calling
  /// thread's or does not return: then the object has to live until HasEnded(). One thread; with no lock held.
  bool AwaitEnd();
  /// Nothing of the service is left to wait for.
  bool HasEnded() const { return processor_.finished() && !focus_worker_.running(); }

  /// QCM_OK; closes the port and keeps everything else.
  std::int32_t Suspend();
  /// QCM_OK, or QCM_PORT_FAILED: then it stays suspended.
  std::int32_t Resume();

  /// As normalised when the service was opened.
  const WideText& port_name() const { return port_name_; }
  NotifyList& notify_list() { return notify_list_; }
  RequestRecords& records() { return records_; }
  CommandProcessor& processor() { return processor_; }

  /// The instrument reports changes: one bit a kind. On the event window's thread.
  void HandleEvent(DWORD mask);
  /// A key was pressed on the instrument.
  void HandleKey(std::uint32_t code);

  void SendReply(std::string_view text) override { SendFrame(false, text); }
  void SendAsynchronous(std::string_view text) override { SendFrame(true, text); }
  void SendControlByte(char code) override;
  void WaitForRoom(const Event& give_up) override { link_->WaitForRoom(give_up); }
  void PostNotification(std::uint32_t code, LPARAM detail) override { notify_list_.Post(code, detail); }
  void SendNotification(std::uint32_t code, LPARAM detail) override { notify_list_.Send(code, detail); }
  Lock& lock() QXCM_RETURN_CAPABILITY(lock_) override { return lock_; }
  MeasuredData& measured_data() override { return measured_data_; }
  FocusWorker& focus_worker() override { return focus_worker_; }
  BatteryState& battery() override { return battery_; }
  OpenFileTable& open_files() override { return open_files_; }
  I2cBus& i2c_bus() override { return i2c_bus_; }
  void StoreRequest(const QCM_MSR_PARAMS& request) override { records_.Store(&request); }
  void StoreRequest(const QCM_EXECUTED_PROCESS_INFO& request) override { records_.Store(&request); }

 private:
  void OpenLinkFirst() QXCM_REQUIRES(lock_);
  bool OpenLink() QXCM_REQUIRES(lock_);
  void CloseLink() QXCM_REQUIRES(lock_);
  void SendFrame(bool asynchronous, std::string_view text);

  std::atomic<bool> closing_{false};
  WideText port_name_;
  NotifyList notify_list_{closing_};
  RequestRecords records_;
  I2cBus i2c_bus_;
  CommandProcessor processor_{*this};
  FrameAssembler assembler_{processor_.commands()};
  const std::unique_ptr<Link> link_;  // opened and closed under the manager lock

  Lock lock_;  // the manager lock
  bool suspended_ QXCM_GUARDED_BY(lock_) = false;
  std::string frame_ QXCM_GUARDED_BY(lock_);  // the frame being sent; kept so that its memory is used again

  MeasuredData measured_data_{*this};
  FocusWorker focus_worker_{*this};
  BatteryState battery_{*this};
  OpenFileTable open_files_;
};

}  // namespace qxcm

#endif
