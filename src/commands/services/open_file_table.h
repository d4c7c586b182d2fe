// The files a controller has open on one service, by the small numbers that name them on the wire.
#ifndef QXCM_COMMANDS_SERVICES_OPEN_FILE_TABLE_H
#define QXCM_COMMANDS_SERVICES_OPEN_FILE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>

#include "platform/handle.h"
#include "platform/lock.h"
#include "platform/windows_api.h"

namespace qxcm {

/// The numbers that are free, first in, first out: a number put back is taken again after all that wait before it.
class HandleNumberPool {
 public:
  static constexpr std::uint8_t kFirst = 1;
  static constexpr std::uint8_t kLast = 99;

  HandleNumberPool();

  std::uint8_t Front() const { return numbers_.front(); }
  void DropFront() { numbers_.pop_front(); }
  void PutBack(std::uint8_t number) { numbers_.push_back(number); }

 private:
  std::deque<std::uint8_t> numbers_;
};

/// Part of the CommManager. A command on open files holds the lock from its start until its reply has been sent; it
/// comes before the manager lock.
class OpenFileTable {
 public:
  static constexpr std::size_t kMostOpen = 10;

  /// The open-file table lock.
  Lock& lock() QXCM_RETURN_CAPABILITY(lock_) { return lock_; }

  bool full() const QXCM_REQUIRES(lock_) { return files_.size() >= kMostOpen; }
  /// Takes the file over and gives it a number. Only while there is room.
  std::uint8_t Add(Handle file) QXCM_REQUIRES(lock_);
  /// The file under a number from the wire, null when there is none.
  HANDLE Find(std::int32_t number) const QXCM_REQUIRES(lock_);
  /// Closes the file under a number, which is then free again even if the platform failed to close. Gives the
  /// platform's error code: 6 when no file is open under the number.
  DWORD Close(std::int32_t number) QXCM_REQUIRES(lock_);
  /// Closes every file.
  void CloseAll();

 private:
  Lock lock_;
  std::map<std::uint8_t, Handle> files_ QXCM_GUARDED_BY(lock_);
  HandleNumberPool numbers_ QXCM_GUARDED_BY(lock_);
};

}  // namespace qxcm

#endif
