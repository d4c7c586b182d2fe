// A serial channel on a pty, for its tests.
#ifndef QXTEST_UNIT_LINK_SERIAL_CHANNEL_PORT_H
#define QXTEST_UNIT_LINK_SERIAL_CHANNEL_PORT_H

#include <gtest/gtest.h>

#include <mutex>
#include <string>

#include "link/serial_channel.h"
#include "support/test_application.h"

namespace qxtest {

/// Takes what the channel has received, unless told to leave it.
class ChannelReceiver final : public qxcm::LinkOwner {
 public:
  void AssembleReceivedBytes(qxcm::Link& link) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!takes_) return;
    std::string bytes;
    link.TakeReceived(bytes);
    received_ += bytes;
  }

  void LeaveBytes() {
    const std::lock_guard<std::mutex> lock(mutex_);
    takes_ = false;
  }
  std::string received() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return received_;
  }
  bool Gets(const std::string& bytes) {
    return WaitUntil([&] { return received() == bytes; });
  }

 private:
  std::mutex mutex_;
  bool takes_ = true;
  std::string received_;
};

/// A channel with its receiver, not yet open.
struct ChannelPort {
  ChannelPort() { channel.SetOwner(&receiver); }
  bool Open() { return channel.Open(u"COM5:"); }
  /// Has the writer thread wait inside a write: the controller does not read.
  void BlockWriter() {
    channel.Write(std::string(qxcm::SerialChannel::kTransmitLimit, 'x'));
    EXPECT_NE(world.controller().Receive(1), "");
  }

  World world;
  ChannelReceiver receiver;
  qxcm::SerialChannel channel;
};

}  // namespace qxtest

#endif
