// Another process of the instrument that takes named mutexes and keeps them.
//
// A mutex belongs to a thread, wherever that thread lives: each one held has a thread of its own that does nothing
// else, so that the library meets it exactly as it meets another process.
#ifndef QXHOST_INSTRUMENT_OTHER_PROCESS_H
#define QXHOST_INSTRUMENT_OTHER_PROCESS_H

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace host::instrument {

/// Any thread. Gives up what it holds when it is destroyed.
class OtherProcess {
 public:
  OtherProcess();
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess();

  /// Takes the mutex, made if it does not exist (UTF-8 name); true when held now, also when it was already. False when
  /// it cannot be had within the time, or cannot be made.
  bool Take(const std::string& name, std::chrono::milliseconds time);
  /// Gives the mutex up; nothing to do when it is not held here.
  void Release(const std::string& name);
  void ReleaseAll();

 private:
  class Holder;

  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Holder>> holders_;  // guarded by mutex_
};

}  // namespace host::instrument

#endif
