// The line of this machine behind a port, whatever it is, and those who have opened it.
#ifndef QXHOST_COMMON_PORTS_LINE_H
#define QXHOST_COMMON_PORTS_LINE_H

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "common/ports/pacer.h"

namespace host {

/// One who has opened a line.
class LineUser {
 public:
  /// Makes a pending wait for input look again: who receives has changed. Called with the line's lock held.
  virtual void Wake() = 0;

 protected:
  ~LineUser() = default;
};

/// All of it may be used from several threads at once.
class Line {
 public:
  explicit Line(std::string port);
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;
  virtual ~Line() = default;

  const std::string& port() const { return port_; }

  /// Adds a user; the first opens the line. Returns 0, or an error code: 5 when the line is in use and ports are not
  /// shared.
  DWORD Join(LineUser* user);
  /// Takes the user out, if it is in. The next one receives; the last closes the line.
  void Leave(LineUser* user);
  /// Received bytes go to the one that has been in longest.
  bool Receives(const LineUser* user) const { return receiver_.load(std::memory_order_acquire) == user; }

  /// Writes follow one another whole: waits for the line; false when `closed` has been set first.
  bool BeginWriting(const std::atomic<bool>& closed);
  void EndWriting();
  /// `closed` of a user has been set: it shall not wait any longer.
  void StopWaiting();

  PacedWay in;
  PacedWay out;

 protected:
  std::mutex mutex_;  // guards what the line is open with, and below

 private:
  /// Both are called with mutex_ held. Open returns 0 or an error code.
  virtual DWORD Open() = 0;
  virtual void Close() = 0;

  const std::string port_;
  std::vector<LineUser*> users_;  // in order of opening; guarded by mutex_
  std::atomic<LineUser*> receiver_{nullptr};

  std::mutex writing_mutex_;
  std::condition_variable written_;
  bool writing_ = false;  // guarded by writing_mutex_
};

}  // namespace host

#endif
