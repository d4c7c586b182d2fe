// The serial channel: what it asks of the platform, and what it carries over a real tty.
#include "link/serial_channel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/kernel/handles.h"
#include "common/ports/ports.h"
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

template <class Structure>
Structure FromHex(const std::string& hex) {
  Structure structure = {};
  std::vector<unsigned char> bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  EXPECT_EQ(bytes.size(), sizeof structure);
  std::memcpy(&structure, bytes.data(), std::min(bytes.size(), sizeof structure));
  return structure;
}

/// The structure that a call set, from the call log.
template <class Structure>
Structure LastSet(const ChannelPort& port, const std::string& call) {
  for (const host::CallRecord& record : port.world.Records()) {
    if (std::get<std::string>(record.call) == call) return FromHex<Structure>(std::get<std::string>(record.args.at(1)));
  }
  ADD_FAILURE() << call << " was not called";
  return {};
}

// ---- Opening

TEST(SerialChannel, SetsThePortUpInThisOrder) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  port.channel.Close();
  Calls calls = port.world.Calls();
  for (std::string& call : calls) call = call.substr(0, call.find('('));
  EXPECT_EQ(Calls(calls.begin(), calls.begin() + 4),
            (Calls{"CreateFileW", "SetupComm", "SetCommState", "SetCommTimeouts"}));
}

TEST(SerialChannel, OpensThePortForReadingAndWritingWithoutSharing) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  EXPECT_EQ(port.world.Calls({"CreateFileW"}), Calls{"CreateFileW(COM5:, 3221225472, 0, null, 3, 0, null)"});
  EXPECT_EQ(port.world.Calls({"SetupComm"}), Calls{"SetupComm(1024, 1024)"});
}

TEST(SerialChannel, SetsSpeedAndCharacterFormat) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const auto state = LastSet<DCB>(port, "SetCommState");
  EXPECT_EQ(state.DCBlength, sizeof(DCB));
  EXPECT_EQ(state.BaudRate, 38400u);
  EXPECT_EQ(state.ByteSize, 8);
  EXPECT_EQ(state.Parity, 0);
  EXPECT_EQ(state.StopBits, 0);
  EXPECT_EQ(state.XonChar, 0x11);
  EXPECT_EQ(state.XoffChar, 0x13);
}

TEST(SerialChannel, SetsThreeOfTheFlagsAndClearsTheOthers) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const auto state = LastSet<DCB>(port, "SetCommState");
  std::uint32_t flags = 0;
  std::memcpy(&flags, reinterpret_cast<const char*>(&state) + 8, sizeof flags);
  EXPECT_EQ(flags & 0x7FFF, 0x1081u) << "binary, transmit continues on XOFF, RTS enabled";
}

TEST(SerialChannel, SetsBothTotalTimeoutsToFiveSeconds) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  const auto timeouts = LastSet<COMMTIMEOUTS>(port, "SetCommTimeouts");
  EXPECT_EQ(timeouts.ReadIntervalTimeout, 0u);
  EXPECT_EQ(timeouts.ReadTotalTimeoutMultiplier, 0u);
  EXPECT_EQ(timeouts.ReadTotalTimeoutConstant, 5000u);
  EXPECT_EQ(timeouts.WriteTotalTimeoutMultiplier, 0u);
  EXPECT_EQ(timeouts.WriteTotalTimeoutConstant, 5000u);
}

TEST(SerialChannel, WaitsForReceivedCharactersAndErrors) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  EXPECT_TRUE(WaitUntil([&] { return port.world.Calls({"SetCommMask"}) == Calls{"SetCommMask(129)"}; }));
}

TEST(SerialChannel, OpensThePortItIsTold) {
  ChannelPort port;
  host::AttachPty("COMBT:");
  ASSERT_TRUE(port.channel.Open(u"COMBT:"));
  EXPECT_EQ(port.world.Calls({"CreateFileW"}), Calls{"CreateFileW(COMBT:, 3221225472, 0, null, 3, 0, null)"});
}

TEST(SerialChannel, IsNotOpenedTwice) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  EXPECT_TRUE(port.Open());
  EXPECT_EQ(port.world.Calls({"CreateFileW", "SetCommState"}).size(), 2u);
}

TEST(SerialChannel, RunsTwoThreadsWhileOpen) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  EXPECT_EQ(host::LibraryThreads(), 2u);
  port.channel.Close();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

/// Opening fails without a trace, and succeeds once the call does.
void ExpectOpenFailsWith(const std::string& call, std::uint64_t nth = 1) {
  ChannelPort port;
  const std::size_t handles = host::LibraryHandles();
  {
    const Failing fault(call, ERROR_GEN_FAILURE, nth);
    EXPECT_FALSE(port.Open());
  }
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(host::LibraryHandles(), handles);
  EXPECT_TRUE(port.Open());
}

TEST(SerialChannel, DoesNotOpenAPortThatCannotBeHad) { ExpectOpenFailsWith("CreateFileW"); }
TEST(SerialChannel, DoesNotOpenAPortWhoseStateCannotBeRead) { ExpectOpenFailsWith("GetCommState"); }
TEST(SerialChannel, DoesNotOpenAPortWhoseStateCannotBeSet) { ExpectOpenFailsWith("SetCommState"); }
TEST(SerialChannel, DoesNotOpenAPortWhoseTimeoutsCannotBeSet) { ExpectOpenFailsWith("SetCommTimeouts"); }
TEST(SerialChannel, DoesNotOpenWithoutAReaderThread) { ExpectOpenFailsWith("CreateThread", 1); }
TEST(SerialChannel, DoesNotOpenWithoutAWriterThread) { ExpectOpenFailsWith("CreateThread", 2); }

TEST(SerialChannel, OpensThoughTheDriverKeepsItsOwnBuffers) {
  ChannelPort port;
  const Failing fault("SetupComm");
  EXPECT_TRUE(port.Open());
}

TEST(SerialChannel, DoesNotOpenAPortThatIsInUse) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  SerialChannel other;
  EXPECT_FALSE(other.Open(u"COM5:"));
  EXPECT_EQ(host::LibraryThreads(), 2u);
}

TEST(SerialChannel, DoesNotOpenAPortThatIsNotThere) {
  ChannelPort port;
  EXPECT_FALSE(port.channel.Open(u"COM9:"));
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

// ---- Closing

TEST(SerialChannel, AsksNothingOfThePlatformWhenClosedTwice) {
  ChannelPort port;
  port.channel.Close();
  ASSERT_TRUE(port.Open());
  port.channel.Close();
  port.world.ForgetCalls();
  port.channel.Close();
  EXPECT_EQ(port.world.Calls(), Calls());
}

TEST(SerialChannel, EndsThePendingWaitByClearingTheMask) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  ASSERT_TRUE(WaitUntil([&] { return port.world.Calls({"SetCommMask"}).size() == 1; }));
  port.channel.Close();
  EXPECT_EQ(port.world.Calls({"SetCommMask"}).back(), "SetCommMask(0)");
}

TEST(SerialChannel, ClosesWhenItGoes) {
  ChannelPort port;
  const std::size_t handles = host::LibraryHandles();
  {
    SerialChannel channel;
    ASSERT_TRUE(channel.Open(u"COM5:"));
  }
  EXPECT_EQ(host::LibraryThreads(), 0u);
  EXPECT_EQ(host::LibraryHandles(), handles);
}

TEST(SerialChannel, OpensAgainAfterClosing) {
  ChannelPort port;
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(port.Open());
    port.world.controller().Send("x");
    port.channel.Close();
  }
  ASSERT_TRUE(port.Open());
  port.channel.Write("y");
  EXPECT_EQ(port.world.controller().Receive(1), "y");
}

TEST(SerialChannel, ClosesInTimeWhenTheControllerNeverReads) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  port.BlockWriter();
  const auto start = std::chrono::steady_clock::now();
  port.channel.Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5900));
}

// ---- Receiving

TEST(SerialChannel, HandsOverWhatTheControllerSends) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  port.world.controller().Send("first");
  EXPECT_TRUE(port.receiver.Gets("first"));
  port.world.controller().Send(std::string("\0\r\n\x11\x13\x03\x1A\xFF", 8));
  EXPECT_TRUE(port.receiver.Gets(std::string("first\0\r\n\x11\x13\x03\x1A\xFF", 13)));
}

TEST(SerialChannel, HandsOverWhatWasSentBeforeThePortWasOpened) {
  ChannelPort port;
  port.world.controller().Send("early");
  ASSERT_TRUE(port.Open());
  EXPECT_TRUE(port.receiver.Gets("early"));
}

TEST(SerialChannel, LosesNothingOfALongStream) {
  ChannelPort port;
  ASSERT_TRUE(port.Open());
  std::string sent;
  for (int i = 0; i < 30000; ++i) sent += std::to_string(i) + ",";
  port.world.controller().Send(sent);
  EXPECT_TRUE(port.receiver.Gets(sent));
}

TEST(SerialChannel, DropsWhatComesWhile32768BytesWait) {
  ChannelPort port;
  port.receiver.LeaveBytes();
  ASSERT_TRUE(port.Open());
  port.world.controller().Send(std::string(32768, 'a') + std::string(60000, 'b'));
  port.world.controller().WaitUntilRead();
  std::string bytes;
  port.channel.TakeReceived(bytes);
  EXPECT_GE(bytes.size(), 32768u);
  EXPECT_LT(bytes.size(), 60000u) << "one read beyond the limit at most";
  EXPECT_EQ(bytes.substr(0, 32768), std::string(32768, 'a'));
}

TEST(SerialChannel, ReceivesAgainAfterAnOverflow) {
  ChannelPort port;
  port.receiver.LeaveBytes();
  ASSERT_TRUE(port.Open());
  port.world.controller().Send(std::string(100000, 'a'));
  port.world.controller().WaitUntilRead();
  std::string bytes;
  port.channel.TakeReceived(bytes);
  port.world.controller().Send("again");
  std::string rest;
  EXPECT_TRUE(WaitUntil([&] {
    port.channel.TakeReceived(bytes);
    rest += bytes;
    return rest.size() >= 5 && rest.substr(rest.size() - 5) == "again";
  }));
}

TEST(SerialChannel, ForgetsReceivedBytesWhenItIsClosed) {
  ChannelPort port;
  port.receiver.LeaveBytes();
  ASSERT_TRUE(port.Open());
  port.world.controller().Send("old");
  port.world.controller().WaitUntilRead();
  port.channel.Close();
  std::string bytes = "mine";
  port.channel.TakeReceived(bytes);
  EXPECT_EQ(bytes, "");
}

}  // namespace
