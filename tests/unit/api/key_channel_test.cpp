// The key thread and the objects it shares with the process that reports keys.
#include "api/key_channel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "common/kernel/handles.h"
#include "common/kernel/named_objects.h"
#include "instrument/keys.h"
#include "instrument/other_process.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using host::instrument::KeyProcess;
using qxcm::KeyChannel;
using qxtest::Failing;
using qxtest::kPatience;
using qxtest::Watchdog;
using Codes = std::vector<std::uint32_t>;
using std::chrono::milliseconds;

std::mutex mutex;
std::condition_variable delivered;
Codes codes;  // guarded by mutex

void Take(std::uint32_t code) {
  const std::lock_guard<std::mutex> lock(mutex);
  codes.push_back(code);
  delivered.notify_all();
}

/// A stopped channel and the process that reports keys.
struct Keys {
  Keys() {
    const std::lock_guard<std::mutex> lock(mutex);
    codes.clear();
  }
  ~Keys() {
    channel.Stop();
    EXPECT_EQ(host::LibraryThreads(), 0u);
  }

  void Press(const Codes& keys) { EXPECT_TRUE(process.Announce(keys, kPatience)); }
  bool Taken() { return process.WaitUntilTaken(kPatience); }
  Codes Delivered(std::size_t count) {
    std::unique_lock<std::mutex> lock(mutex);
    delivered.wait_for(lock, kPatience, [&] { return codes.size() >= count; });
    return codes;
  }
  /// The codes when the thread has certainly gone on after the last announcement.
  Codes DeliveredInAll() {
    channel.Stop();
    const std::lock_guard<std::mutex> lock(mutex);
    return codes;
  }

  KeyProcess process;
  KeyChannel channel{&Take};
};

TEST(KeyChannel, DeliversAnAnnouncedKey) {
  Keys keys;
  keys.channel.Start();
  keys.Press({0x0A});
  EXPECT_EQ(keys.Delivered(1), Codes{0x0A});
  EXPECT_TRUE(keys.Taken());
}

TEST(KeyChannel, DeliversOneKeyAfterTheOther) {
  Keys keys;
  keys.channel.Start();
  for (std::uint32_t code = 1; code <= 50; ++code) {
    keys.Press({code});
    EXPECT_EQ(keys.Delivered(code).back(), code);
    EXPECT_TRUE(keys.Taken());
  }
  EXPECT_EQ(keys.DeliveredInAll().size(), 50u);
}

TEST(KeyChannel, DeliversAll32BitsOfACode) {
  Keys keys;
  keys.channel.Start();
  keys.Press({0xFEDCBA98});
  EXPECT_EQ(keys.Delivered(1), Codes{0xFEDCBA98});
}

TEST(KeyChannel, DeliversTheLaterOfTwoKeysAnnouncedBeforeItWakes) {
  Keys keys;
  keys.Press({1});
  keys.Press({2});
  keys.channel.Start();
  EXPECT_EQ(keys.Delivered(1), Codes{2});
  EXPECT_TRUE(keys.Taken());
  EXPECT_EQ(keys.DeliveredInAll(), Codes{2});
}

TEST(KeyChannel, DeliversAKeyAnnouncedWhileItWasStopped) {
  Keys keys;
  keys.channel.Start();
  keys.channel.Stop();
  keys.Press({7});
  keys.channel.Start();
  EXPECT_EQ(keys.Delivered(1), Codes{7});
}

TEST(KeyChannel, RunsOneThreadHoweverOftenItIsStarted) {
  Keys keys;
  keys.channel.Start();
  keys.channel.Start();
  EXPECT_EQ(host::LibraryThreads(), 1u);
}

TEST(KeyChannel, MayBeStoppedTwiceOrBeforeItIsStarted) {
  Keys keys;
  keys.channel.Stop();
  keys.channel.Start();
  keys.channel.Stop();
  keys.channel.Stop();
  EXPECT_EQ(host::LibraryThreads(), 0u);
}

TEST(KeyChannel, ClosesItsObjectsWhenItStops) {
  Keys keys;
  const std::size_t handles = host::LibraryHandles();
  keys.channel.Start();
  keys.Press({1});
  keys.Delivered(1);
  keys.channel.Stop();
  EXPECT_EQ(host::LibraryHandles(), handles);
}

TEST(KeyChannel, MakesItsObjectsWhenNoOtherProcessHas) {
  KeyChannel channel(&Take);
  channel.Start();
  const char* const name = "KORAX-HALVERN.RZM.CommKeyData";
  EXPECT_TRUE(qxtest::WaitUntil([&] { return host::SharedBlock(name).has_value(); }));
  EXPECT_EQ(host::SharedBlock(name)->size(), 4u);
  channel.Stop();
}

TEST(KeyChannel, DoesNotClearTheBlock) {
  Keys keys;
  keys.Press({3});
  keys.channel.Start();
  EXPECT_EQ(keys.Delivered(1), Codes{3});
  keys.channel.Stop();
  const auto block = host::SharedBlock("KORAX-HALVERN.RZM.CommKeyData");
  ASSERT_TRUE(block.has_value());
  EXPECT_EQ(block->at(0), 3);
}

/// The thread ends by itself when a call fails; the next start tries again.
void ExpectQuietEndWithout(const std::string& call, std::uint64_t nth = 1) {
  Keys keys;
  {
    const Failing fault(call, ERROR_NOT_ENOUGH_MEMORY, nth);
    keys.channel.Start();
    EXPECT_TRUE(qxtest::WaitUntil([] { return host::LibraryThreads() == 0; }));
  }
  keys.Press({5});
  keys.channel.Start();
  EXPECT_EQ(keys.Delivered(1), Codes{5});
}

TEST(KeyChannel, EndsQuietlyWithoutAnEvent) { ExpectQuietEndWithout("CreateEventW"); }
TEST(KeyChannel, EndsQuietlyWithoutAMutex) { ExpectQuietEndWithout("CreateMutexW"); }
TEST(KeyChannel, EndsQuietlyWithoutAMapping) { ExpectQuietEndWithout("CreateFileMappingW"); }
TEST(KeyChannel, EndsQuietlyWithoutAView) { ExpectQuietEndWithout("MapViewOfFile"); }
TEST(KeyChannel, DoesWithoutAThread) { ExpectQuietEndWithout("CreateThread"); }

TEST(KeyChannel, DeliversAKeyThoughTheMutexWasRefusedOnce) {
  Keys keys;
  keys.channel.Start();
  keys.Press({1});
  keys.Delivered(1);
  ASSERT_TRUE(keys.Taken());
  const Failing one("WaitForSingleObject", ERROR_INVALID_HANDLE);
  keys.Press({2});
  EXPECT_EQ(keys.Delivered(2), (Codes{1, 2}));
}

TEST(KeyChannel, StopsThoughAnotherProcessKeepsTheMutex) {
  Watchdog watchdog;
  Keys keys;
  keys.Press({1});
  host::instrument::OtherProcess other;
  ASSERT_TRUE(other.Take("KORAX-HALVERN.RZM.CommKeyDataMtx", kPatience));
  keys.channel.Start();
  EXPECT_FALSE(keys.process.WaitUntilTaken(milliseconds(50))) << "the code cannot be read";
  keys.channel.Stop();
  EXPECT_EQ(keys.DeliveredInAll(), Codes());
}

}  // namespace
