// Events and replies at once: a reply never mixes two updates, and no message is lost.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

#include "api/comm_manager.h"
#include "instrument/angles.h"
#include "instrument/distance_meter.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using host::instrument::Angles;
using host::instrument::Pose;

constexpr int kEvents = 2000;
constexpr std::chrono::milliseconds kEventPause{1};
constexpr unsigned long kAngleEvent = 0x8;
constexpr unsigned long kTiltEvent = 0x40;
constexpr unsigned long kDistanceReady = 0x1;
constexpr double kSecond = 3.141592653589793 / 648000;

/// Every angle and tilt of one update has the same value.
void SetAll(int seconds) {
  const double angle = seconds * kSecond;
  Angles::Instance().Change([=](Pose& pose) { pose = {angle, angle, angle, angle, angle, angle}; });
}

std::string ValueOf(const std::string& reply, const std::string& key) {
  const std::size_t begin = reply.find("," + key + "=") + key.size() + 2;
  return reply.substr(begin, reply.find_first_of(",>", begin) - begin);
}

bool AllSame(const std::string& reply, std::initializer_list<const char*> keys) {
  const std::string first = ValueOf(reply, *keys.begin());
  for (const char* key : keys) {
    if (ValueOf(reply, key) != first) return false;
  }
  return true;
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(MeasuredData, NoReplyMixesTwoUpdatesAndNoMessageIsLostAtAThousandEventsASecond) {
  const qxtest::Watchdog watchdog(std::chrono::seconds(100));
  SetAll(0);
  host::instrument::DistanceMeter::Instance().SetValid(true);
  qxtest::MemoryLine line;
  qxcm::CommManager manager(u"COM5", line.MakeLink());
  ASSERT_EQ(line.Exchange("ST_OMD,ANG=21,TLT=1,DST=11,KEY=1"), qxtest::kAck);

  std::atomic<bool> done{false};
  std::future<void> events = std::async(std::launch::async, [&] {
    for (int n = 1; n <= kEvents; ++n) {
      SetAll(n);
      manager.HandleEvent(kAngleEvent | kTiltEvent | kDistanceReady);
      std::this_thread::sleep_for(kEventPause);
    }
    done = true;
  });
  std::string messages;
  int replies = 0;
  while (!done) {
    const std::string all = line.Exchange("GT_MDT,HAN,VAN,HAF,VAF,HAR,VAR,XTL,YTL");
    const std::size_t begin = all.find("R<");
    const std::string reply = all.substr(begin, all.find('\r', begin) - begin);
    messages += all;
    ++replies;
    ASSERT_TRUE(AllSame(reply, {"HAN", "VAN", "HAF", "VAF", "HAR", "VAR"})) << reply;
    ASSERT_TRUE(AllSame(reply, {"XTL", "YTL"})) << reply;
  }
  events.get();
  messages += line.Exchange("GT_MDT");
  EXPECT_GT(replies, kEvents / 10);
  EXPECT_EQ(Count(messages, "A<MDT,HAR="), std::size_t{kEvents});
  EXPECT_EQ(Count(messages, "A<MDT,XTL="), std::size_t{kEvents});
  EXPECT_EQ(Count(messages, "A<MDT,SDF="), std::size_t{kEvents});
  host::instrument::DistanceMeter::Instance().Reset();
  SetAll(0);
}

}  // namespace
