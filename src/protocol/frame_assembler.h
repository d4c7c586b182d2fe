// The receiving side of one link: takes its bytes, answers ENQ and bad checksums, queues good commands.
#ifndef QXCM_PROTOCOL_FRAME_ASSEMBLER_H
#define QXCM_PROTOCOL_FRAME_ASSEMBLER_H

#include <atomic>
#include <string>

#include "link/link.h"
#include "platform/lock.h"
#include "protocol/command_queue.h"
#include "protocol/frame_decoder.h"

namespace qxcm {

/// Works on the link's reader thread and takes no lock but its own, the link's and the queue's, so that a port can be
/// closed while another thread holds the manager lock. Owned by the CommManager.
class FrameAssembler final : public LinkOwner {
 public:
  explicit FrameAssembler(CommandQueue& commands) : commands_(commands) {}

  void AssembleReceivedBytes(Link& link) override;

  /// Nothing more is assembled or queued; called before the link is closed.
  void Stop() { stop_.store(true, std::memory_order_release); }
  /// Forgets the bytes and the half frame of a link that has been closed.
  void Discard();
  /// Assembles again; called before the link is opened.
  void Restart() { stop_.store(false, std::memory_order_release); }

 private:
  CommandQueue& commands_;
  std::atomic<bool> stop_{false};
  Lock lock_;
  std::string received_ QXCM_GUARDED_BY(lock_);
  FrameDecoder decoder_ QXCM_GUARDED_BY(lock_);
};

}  // namespace qxcm

#endif
