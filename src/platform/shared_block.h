// Memory shared with other processes by name, with the mutex that guards it.
#ifndef QXCM_PLATFORM_SHARED_BLOCK_H
#define QXCM_PLATFORM_SHARED_BLOCK_H

#include <cstddef>

#include "platform/event.h"
#include "platform/handle.h"
#include "platform/thread_annotations.h"
#include "platform/windows_api.h"

namespace qxcm {

/// A mutex shared with other processes by name; an owner that died leaves it free.
class QXCM_CAPABILITY NamedMutex {
 public:
  /// Creates or opens it. Throws std::runtime_error when the platform has none to give.
  explicit NamedMutex(LPCWSTR name);

  /// Waits without time-out. Throws std::runtime_error when the platform refuses the wait.
  void Enter() QXCM_ACQUIRE();
  /// The same, but false, without the mutex, once `give_up` is set.
  bool EnterUnless(const Event& give_up) QXCM_ANNOTATION(try_acquire_capability(true));
  void Leave() QXCM_RELEASE();

 private:
  Handle mutex_;
};

/// A named block of page-file backed memory, readable and writable. Its bytes are used only under its mutex.
class SharedBlock {
 public:
  /// Creates or opens both. Throws std::runtime_error, "FileMapping create failed." when there is no block.
  SharedBlock(LPCWSTR name, LPCWSTR mutex_name, std::size_t size);
  SharedBlock(const SharedBlock&) = delete;
  SharedBlock& operator=(const SharedBlock&) = delete;
  ~SharedBlock();

  /// Whether this object made the block, rather than opening one that existed.
  bool created() const { return created_; }
  NamedMutex& mutex() QXCM_RETURN_CAPABILITY(mutex_) { return mutex_; }
  std::byte* bytes() QXCM_REQUIRES(mutex_) { return view_; }

 private:
  NamedMutex mutex_;
  Handle mapping_;
  bool created_ = false;
  std::byte* view_ = nullptr;
};

}  // namespace qxcm

#endif
