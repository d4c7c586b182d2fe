// A link over a serial port of the platform ("COM5:", "COMBT:"), with a reader and a writer thread.
//
// Reader: WaitCommEvent -> ReadFile -> receive queue -> the owner. Writer: transmit queue -> WriteFile. Both queues are
// bounded. Owned by the CommManager, which serialises Open and Close.
#ifndef QXCM_LINK_SERIAL_CHANNEL_H
#define QXCM_LINK_SERIAL_CHANNEL_H

#include <cstddef>
#include <string>
#include <string_view>

#include "link/link.h"
#include "platform/event.h"
#include "platform/handle.h"
#include "platform/lock.h"
#include "platform/thread.h"

namespace qxcm {

class SerialChannel final : public Link {
 public:
  /// Received bytes that may wait for the owner; a read that finds so many waiting is dropped.
  static constexpr std::size_t kReceiveLimit = 32768;
  /// Bytes that may wait for a controller that does not read; a Write beyond them is dropped.
  static constexpr std::size_t kTransmitLimit = 131072;
  /// WaitForRoom waits while more than this many bytes are queued.
  static constexpr std::size_t kTransmitRoom = 65536;

  SerialChannel() = default;
  ~SerialChannel() override { SerialChannel::Close(); }

  bool Open(LPCWSTR port) override;
  void Close() override;
  void TakeReceived(std::string& bytes) override;
  void Write(std::string_view bytes) override;
  void WaitForRoom(const Event& give_up) override;

  /// Discards what the driver and the receive queue hold, and what the driver has still to send.
  void PurgeReceive();
  /// Discards what the driver has still to send, and empties the receive queue.
  void PurgeTransmit();

 private:
  bool Configure();
  bool StartThreads();
  void StopThreads();
  void Purge(bool receive);
  void EndReader();
  void Join(Thread& thread);
  void ReadLoop(HANDLE port);
  bool ReceiveWaiting(HANDLE port);
  void WriteLoop(HANDLE port);
  bool WriteQueued(HANDLE port, std::string& copy);
  void DiscardQueues();

  Handle port_;
  Event stop_;
  Thread reader_;
  Thread writer_;
  std::string read_buffer_;  // the reader thread's own

  Lock receive_lock_;
  std::string receive_queue_ QXCM_GUARDED_BY(receive_lock_);

  // The send event is set while the transmit queue holds bytes, the room event while there is room in it.
  Lock transmit_lock_;
  bool accepting_ QXCM_GUARDED_BY(transmit_lock_) = false;
  std::string transmit_queue_ QXCM_GUARDED_BY(transmit_lock_);
  Event send_;
  Event room_;
};

}  // namespace qxcm

#endif
