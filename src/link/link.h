// The road for bytes between the external controller and the service: what every kind of link offers.
#ifndef QXCM_LINK_LINK_H
#define QXCM_LINK_LINK_H

#include <string>
#include <string_view>

#include "platform/event.h"
#include "platform/lock.h"
#include "platform/windows_api.h"

namespace qxcm {

class Link;

/// Whoever takes the received bytes.
class LinkOwner {
 public:
  /// The link holds received bytes; the owner takes them with Link::TakeReceived. Called on the link's reader thread,
  /// must return soon and must not throw.
  virtual void AssembleReceivedBytes(Link& link) = 0;

 protected:
  ~LinkOwner() = default;
};

/// A link to a controller. Open and Close are serialised by the caller; the rest may be called from any thread.
class Link {
 public:
  Link() = default;
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  virtual ~Link() = default;

  /// Opens the port ("COM5:") and starts taking bytes. True also when it is open already. False leaves it closed.
  virtual bool Open(LPCWSTR port) = 0;
  /// Stops and closes; bytes not yet taken or sent are discarded. Nothing to do when closed.
  virtual void Close() = 0;
  /// Replaces `bytes` with all that was received since the last call.
  virtual void TakeReceived(std::string& bytes) = 0;
  /// Queues the bytes, all or none, behind those of earlier calls and returns at once. Dropped while closed, or when
  /// the controller has left too much unread.
  virtual void Write(std::string_view bytes) = 0;
  /// Waits until a reply of any usual size can be queued, the link is closed, or `give_up` is set.
  virtual void WaitForRoom(const Event& give_up) = 0;

  /// Names the owner that takes received bytes; null for none. The owner must outlive its naming.
  void SetOwner(LinkOwner* owner) {
    Guard guard(owner_lock_);
    owner_ = owner;
  }

  /// From now on closing handles messages sent to the calling thread's windows while it waits. For a link that is
  /// closed for good: a window that ran in the middle of a suspension would find its service half suspended.
  void LetSentMessagesThroughWhenClosing() { lets_sent_messages_through_ = true; }

 protected:
  bool lets_sent_messages_through() const { return lets_sent_messages_through_; }

  /// Tells the owner, if there is one.
  void TellOwner() {
    LinkOwner* owner = nullptr;
    {
      Guard guard(owner_lock_);
      owner = owner_;
    }
    if (owner != nullptr) owner->AssembleReceivedBytes(*this);
  }

 private:
  bool lets_sent_messages_through_ = false;  // set and looked at by whoever closes
  Lock owner_lock_;
  LinkOwner* owner_ QXCM_GUARDED_BY(owner_lock_) = nullptr;
};

}  // namespace qxcm

#endif
