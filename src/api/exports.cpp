// The exported functions: the service behind a handle, a call on it, a result code; nothing is thrown across.
#include <cstdint>
#include <exception>
#include <memory>

#include "QXCommMgr.h"
#include "api/open_services.h"

namespace {

using qxcm::CommManager;
using qxcm::OpenServices;

/// Calls `work` with the service behind the handle, kept alive meanwhile.
template <class Work>
QCM_INT32 WithService(QCM_HANDLE handle, Work work) noexcept {
  try {
    const std::shared_ptr<CommManager> manager = OpenServices::Instance().Find(handle);
    return manager == nullptr || manager->closing() ? QCM_NO_SERVICE : work(*manager);
  } catch (const std::exception&) {
    return QCM_BAD_ARGUMENT;  // out of memory, or a lock the platform refused
  }
}

template <class Record>
QCM_INT32 FetchRecord(QCM_HANDLE handle, Record* record) noexcept {
  return WithService(handle, [&](CommManager& manager) {
    if (record == nullptr) return QCM_BAD_ARGUMENT;
    return manager.records().Fetch(record) ? QCM_OK : QCM_NOTHING_RECORDED;
  });
}

}  // namespace

extern "C" {

QCM_HANDLE QCMOpenComm(const QCM_WCHAR* port_name) {
  try {
    return OpenServices::Instance().Open(port_name);
  } catch (const std::exception&) {
    return 0;
  }
}

QCM_INT32 QCMCloseComm(QCM_HANDLE handle) {
  try {
    return OpenServices::Instance().Close(handle);
  } catch (const std::exception&) {
    return QCM_BAD_ARGUMENT;  // the platform refused the lifecycle lock; the service is still open
  }
}

QCM_INT32 QCMSuspendComm(QCM_HANDLE handle) {
  return WithService(handle, [](CommManager& manager) { return manager.Suspend(); });
}

QCM_INT32 QCMResumeComm(QCM_HANDLE handle) {
  return WithService(handle, [](CommManager& manager) { return manager.Resume(); });
}

QCM_INT32 QCMRegisterNotifyWindow(QCM_HANDLE handle, QCM_WINDOW window, QCM_UINT32 message) {
  return WithService(
      handle, [&](CommManager& manager) { return manager.notify_list().Register(static_cast<HWND>(window), message); });
}

QCM_INT32 QCMUnregisterNotifyWindow(QCM_HANDLE handle, QCM_WINDOW window) {
  return WithService(handle,
                     [&](CommManager& manager) { return manager.notify_list().Unregister(static_cast<HWND>(window)); });
}

QCM_INT32 QCMGetPortName(QCM_HANDLE handle, QCM_WCHAR* buffer, QCM_UINT32 buffer_bytes) {
  const std::size_t room = buffer == nullptr ? 0 : buffer_bytes / sizeof(QCM_WCHAR);
  if (room > 0) buffer[0] = 0;
  return WithService(handle, [&](CommManager& manager) {
    const qxcm::WideText& name = manager.port_name();
    if (name.size() >= room) return QCM_BAD_ARGUMENT;
    name.copy(buffer, name.size());
    buffer[name.size()] = 0;
    return QCM_OK;
  });
}

QCM_INT32 QCMSetAngleRoundParams(QCM_HANDLE handle, double step_seconds) {
  return WithService(handle, [&](CommManager& manager) {
    return manager.measured_data().SetRoundStep(step_seconds) ? QCM_OK : QCM_BAD_ARGUMENT;
  });
}

QCM_INT32 QCMGetLastMsrParams(QCM_HANDLE handle, QCM_MSR_PARAMS* record) { return FetchRecord(handle, record); }

QCM_INT32 QCMGetLastExecutedProcessInfo(QCM_HANDLE handle, QCM_EXECUTED_PROCESS_INFO* record) {
  return FetchRecord(handle, record);
}

QCM_INT32 QCMGetLastTurnParams(QCM_HANDLE handle, QCM_TURN_PARAMS* record) { return FetchRecord(handle, record); }

QCM_INT32 QCMGetLastTargetSearchParams(QCM_HANDLE handle, QCM_TARGET_SEARCH_PARAMS* record) {
  return FetchRecord(handle, record);
}

QCM_INT32 QCMGetLastSavedImageParams(QCM_HANDLE handle, QCM_SAVED_IMAGE_PARAMS* record) {
  return FetchRecord(handle, record);
}

QCM_INT32 QCMGetLastTargetSearchResult(QCM_HANDLE handle, QCM_TARGET_SEARCH_RESULT* record) {
  return FetchRecord(handle, record);
}

QCM_INT32 QCMT_UpgradeToolsMode(QCM_HANDLE handle) {
  return WithService(handle, [](CommManager& manager) {
    manager.processor().SetToolsMode();
    return QCM_OK;
  });
}

}  // extern "C"
