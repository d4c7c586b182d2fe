// What a command can reach of the open service it came in on. Implemented by CommManager (api/comm_manager.h).
#ifndef QXCM_PROTOCOL_SERVICE_H
#define QXCM_PROTOCOL_SERVICE_H

#include <cstdint>
#include <string_view>

#include "QXCommMgr.h"
#include "platform/event.h"
#include "platform/lock.h"
#include "platform/windows_api.h"

namespace qxcm {

class MeasuredData;   // commands/measure/measured_data.h
class FocusWorker;    // commands/measure/focus.h
class BatteryState;   // commands/services/battery.h
class OpenFileTable;  // commands/services/open_file_table.h
class I2cBus;         // commands/instrument/devices/i2c_bus.h

/// Every function may be called from any thread. Nothing is written to the link while the service is suspended.
class Service {
 public:
  /// Sends a text as an "R" frame.
  virtual void SendReply(std::string_view text) = 0;
  /// Sends a text as an "A" frame.
  virtual void SendAsynchronous(std::string_view text) = 0;
  /// Sends one unframed byte.
  virtual void SendControlByte(char code) = 0;
  /// Waits until the controller has read enough of what was sent to make room for more, or `give_up` is set. Not to be
  /// called with a lock held.
  virtual void WaitForRoom(const Event& give_up) = 0;

  /// Posts a notice to every registered window.
  virtual void PostNotification(std::uint32_t code, LPARAM detail) = 0;
  /// Sends a notice to every registered window and returns when all have handled it. Not to be called with a lock held.
  virtual void SendNotification(std::uint32_t code, LPARAM detail) = 0;

  /// The manager lock (re-entrant): guards the measured data, the output modes and the sends that belong to them.
  virtual Lock& lock() = 0;
  virtual MeasuredData& measured_data() = 0;
  virtual FocusWorker& focus_worker() = 0;
  virtual BatteryState& battery() = 0;
  virtual OpenFileTable& open_files() = 0;
  virtual I2cBus& i2c_bus() = 0;
  /// Keeps a request for the local application to fetch.
  virtual void StoreRequest(const QCM_MSR_PARAMS& request) = 0;
  virtual void StoreRequest(const QCM_EXECUTED_PROCESS_INFO& request) = 0;

 protected:
  ~Service() = default;
};

}  // namespace qxcm

#endif
