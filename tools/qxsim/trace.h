// The trace: one line per frame, platform call and notice, as they come.
#ifndef QXSIM_TRACE_H
#define QXSIM_TRACE_H

#include <cstdio>
#include <mutex>
#include <string>

#include "common/calls/calls.h"
#include "qxsim/application/notifications.h"
#include "qxsim/traffic.h"

namespace qxsim {

/// "     12.345 frame   COM5: in  command GT_MDT,HAN"
std::string TraceLine(const TrafficEvent& event);
/// "     12.345 call    COREDLL SetupComm(19, 1024, 1024) = 1"
std::string TraceLine(const host::CallRecord& call);
/// "     12.345 notice  window 2 posted 0x8001 1537 0"
std::string TraceLine(const Notification& notification);

/// Any thread. Lines are never mixed; each is written out at once.
class Trace {
 public:
  /// \param file  "-" for standard error. Throws StartError when it cannot be written.
  explicit Trace(const std::string& file);
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;
  ~Trace();

  void Write(const std::string& line);

 private:
  std::mutex mutex_;
  std::FILE* file_ = nullptr;  // guarded by mutex_
};

}  // namespace qxsim

#endif
