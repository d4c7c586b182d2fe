// The open services of this process, by handle.
#ifndef QXCM_API_OPEN_SERVICES_H
#define QXCM_API_OPEN_SERVICES_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "QXCommMgr.h"
#include "api/comm_manager.h"
#include "api/key_channel.h"
#include "platform/lock.h"
#include "platform/shared_block.h"
#include "platform/waiting.h"

namespace qxcm {

/// Process-wide; any thread. Open and Close are serialised by the lifecycle lock, but for the wait
/// for a closed service's threads. The global lock guards the handle map
/// alone and is never held while a service works or is waited for: whoever looks a service up shares its ownership.
class OpenServices {
 public:
  static constexpr std::size_t kMost = 8;

  /// The one of this process; it is never destroyed, so that threads of services left open cannot outlive it.
  static OpenServices& Instance();

  /// A new handle; throws std::exception when the service cannot be opened.
  QCM_HANDLE Open(LPCWSTR port_name);
  /// QCM_OK or QCM_NO_SERVICE.
  std::int32_t Close(QCM_HANDLE handle);

  /// Null when there is no such service.
  std::shared_ptr<CommManager> Find(QCM_HANDLE handle);
  /// All that are open at this moment.
  std::vector<std::shared_ptr<CommManager>> All();

 private:
  OpenServices();

  std::size_t Count();
  void CreateWindowListBlock() QXCM_REQUIRES(lifecycle_lock_);
  QCM_HANDLE Insert(std::shared_ptr<CommManager> manager);
  std::shared_ptr<CommManager> Remove(QCM_HANDLE handle);
  std::shared_ptr<CommManager> ShutDown(QCM_HANDLE handle);
  void ForgetEnded() QXCM_REQUIRES(lifecycle_lock_);
  void StopSharedPartsWhenLastIsGone() QXCM_REQUIRES(lifecycle_lock_);

  WindowSafeLock lifecycle_lock_;
  KeyChannel key_channel_ QXCM_GUARDED_BY(lifecycle_lock_);
  // There while a service is open: other processes find it by name.
  std::optional<SharedBlock> window_list_block_ QXCM_GUARDED_BY(lifecycle_lock_);
  // Closed: kept until their dispatchers have ended, which a window that handles a notice may hold up.
  std::vector<std::shared_ptr<CommManager>> ending_ QXCM_GUARDED_BY(lifecycle_lock_);

  Lock global_lock_;
  std::map<QCM_HANDLE, std::shared_ptr<CommManager>> services_ QXCM_GUARDED_BY(global_lock_);
  std::uint32_t sequence_ QXCM_GUARDED_BY(global_lock_) = 0;
};

}  // namespace qxcm

#endif
