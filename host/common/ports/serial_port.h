// One opening of a serial port, as the platform's serial calls see it.
#ifndef QXHOST_COMMON_PORTS_SERIAL_PORT_H
#define QXHOST_COMMON_PORTS_SERIAL_PORT_H

#include <windows.h>

#include "common/streams/streams.h"

namespace host {

/// The operations are the platform's calls of the same meaning; they return FALSE with the last error set. Every one
/// may run beside every other, and a pending one ends when the handle is closed (error 995). Read and Write return when
/// all bytes have passed or the total time-out has (TRUE with fewer bytes).
class SerialPort : public Stream {
 public:
  virtual BOOL GetState(DCB* state) = 0;
  virtual BOOL SetState(const DCB& state) = 0;
  /// Total time-outs only: error 87 for an interval.
  virtual BOOL SetTimeouts(const COMMTIMEOUTS& timeouts) = 0;
  /// EV_RXCHAR and EV_ERR, or 0. Ends a pending WaitEvent, which reports no event.
  virtual BOOL SetMask(DWORD mask) = 0;
  /// Reports EV_RXCHAR as long as bytes wait. Fails at once with mask 0 or while another thread waits (87), and when
  /// the line has hung up (1117).
  virtual BOOL WaitEvent(DWORD* mask) = 0;
  virtual BOOL ClearError(DWORD* errors, COMSTAT* status) = 0;
  virtual BOOL Purge(DWORD flags) = 0;
};

}  // namespace host

#endif
