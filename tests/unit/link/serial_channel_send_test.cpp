// The serial channel: what it sends, and purging.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
#include "link/serial_channel.h"
#include "platform/event.h"
#include "support/memory_link.h"
#include "support/test_application.h"
#include "unit/link/serial_channel_port.h"

namespace {

using qxcm::SerialChannel;
using qxtest::ChannelPort;
using qxtest::Failing;
using qxtest::kForGood;
using qxtest::WaitUntil;
using Calls = std::vector<std::string>;

// ---- Sending

TEST(SerialChannel, SendsWhatIsWritten) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  port.channel.Write("one");
  EXPECT_EQ(port.world.controller().Receive(3), "one");
  port.channel.Write(std::string("\0\r\n\x11\x13\xFF", 6));
  EXPECT_EQ(port.world.controller().Receive(6), std::string("\0\r\n\x11\x13\xFF", 6));
}

TEST(SerialChannel, DropsWhatIsWrittenWhileItIsClosed) {
  ChannelPort port;
  port.channel.Write("before");
  ASSERT_TRUE(port.Open());
  port.channel.Write("x");
  EXPECT_EQ(port.world.controller().Receive(1), "x");
  port.channel.Close();
  port.channel.Write("between");
  ASSERT_TRUE(port.Open());
  port.channel.Write("y");
  EXPECT_EQ(port.world.controller().Receive(1), "y");
}

TEST(SerialChannel, KeepsTheOrderOfManyWrites) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  std::string expected;
  std::thread writer([&] {
    for (int i = 0; i < 5000; ++i) port.channel.Write(std::to_string(i) + ",");
  });
  for (int i = 0; i < 5000; ++i) expected += std::to_string(i) + ",";
  EXPECT_EQ(port.world.controller().Receive(expected.size()), expected);
  writer.join();
}

TEST(SerialChannel, KeepsTheWritesOfSeveralThreadsWhole) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const auto write = [&](char letter) {
    for (int i = 0; i < 500; ++i) port.channel.Write(std::string(20, letter));
  };
  std::thread one([&] { write('a'); });
  std::thread other([&] { write('b'); });
  const std::string received = port.world.controller().Receive(20000);
  one.join();
  other.join();
  EXPECT_EQ(std::count(received.begin(), received.end(), 'a'), 10000);
  for (std::size_t i = 0; i < received.size(); i += 20) {
    ASSERT_EQ(received.substr(i, 20), std::string(20, received[i])) << "at " << i;
  }
}

TEST(SerialChannel, DropsWholeWritesWhenTheControllerLeavesTooMuchUnread) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const std::string piece = std::string(999, 'x') + "|";
  for (int i = 0; i < 1000; ++i) port.channel.Write(piece);
  const std::string received = port.world.controller().ReceiveUntilQuiet(std::chrono::milliseconds(300));
  EXPECT_GE(received.size(), SerialChannel::kTransmitLimit - piece.size());
  EXPECT_LT(received.size(), 500000u);
  EXPECT_EQ(received.size() % piece.size(), 0u);
  EXPECT_EQ(std::count(received.begin(), received.end(), '|'), static_cast<long>(received.size() / piece.size()));
}

TEST(SerialChannel, HasRoomWhenTheControllerReads) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const qxcm::Event give_up;
  port.channel.WaitForRoom(give_up);
  port.channel.Write(std::string(SerialChannel::kTransmitLimit, 'x'));
  std::thread waiter([&] { port.channel.WaitForRoom(give_up); });
  EXPECT_EQ(port.world.controller().Receive(SerialChannel::kTransmitLimit).size(), SerialChannel::kTransmitLimit);
  waiter.join();
}

TEST(SerialChannel, StopsWaitingForRoomWhenToldToGiveUp) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  qxcm::Event give_up;
  port.channel.Write(std::string(SerialChannel::kTransmitLimit, 'x'));
  std::thread waiter([&] { port.channel.WaitForRoom(give_up); });
  give_up.Set();
  waiter.join();
  port.world.controller().Receive(SerialChannel::kTransmitLimit);
}

TEST(SerialChannel, StopsWaitingForRoomWhenItIsClosed) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const qxcm::Event give_up;
  port.BlockWriter();
  std::thread waiter([&] { port.channel.WaitForRoom(give_up); });
  std::thread closer([&] { port.channel.Close(); });
  port.world.controller().ReceiveUntilQuiet(std::chrono::milliseconds(100));  // lets the write in progress end
  closer.join();
  waiter.join();
}

// ---- Purging

TEST(SerialChannel, PurgesBothWaysOfTheDriverAndItsOwnReceivedBytes) {
  ChannelPort port;
  port.receiver.LeaveBytes();
  ASSERT_TRUE(port.Open());
  port.world.controller().Send("old");
  port.world.controller().WaitUntilRead();
  port.channel.PurgeReceive();
  std::string bytes;
  port.channel.TakeReceived(bytes);
  EXPECT_EQ(bytes, "");
  EXPECT_EQ(port.world.Calls({"PurgeComm"}), (Calls{"PurgeComm(8)", "PurgeComm(4)"}));
}

TEST(SerialChannel, PurgesWhatTheDriverHasStillToSend) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  port.channel.PurgeTransmit();
  EXPECT_EQ(port.world.Calls({"PurgeComm"}), Calls{"PurgeComm(4)"});
}

}  // namespace
