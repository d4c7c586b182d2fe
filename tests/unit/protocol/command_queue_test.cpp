// The ring of command texts and its event.
#include "protocol/command_queue.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <deque>
#include <string>
#include <thread>

#include "common/sync/sync.h"

namespace {

using qxcm::CommandQueue;

bool Signalled(const CommandQueue& queue) {
  return host::WaitForSingleObject(queue.message_event().handle(), 0) == WAIT_OBJECT_0;
}

std::string Popped(CommandQueue& queue) {
  std::string text = "left over";
  return queue.Pop(text) ? text : "(empty)";
}

TEST(CommandQueue, GivesTheTextsBackInTheirOrder) {
  CommandQueue queue;
  for (const char* text : {"first", "second", "third"}) queue.Push(text);
  EXPECT_EQ(Popped(queue), "first");
  EXPECT_EQ(Popped(queue), "second");
  EXPECT_EQ(Popped(queue), "third");
  EXPECT_EQ(Popped(queue), "(empty)");
}

TEST(CommandQueue, IsSignalledWhileItHoldsATextAndResetByThePopThatEmptiesIt) {
  CommandQueue queue;
  EXPECT_FALSE(Signalled(queue));
  queue.Push("a");
  queue.Push("b");
  EXPECT_TRUE(Signalled(queue));
  Popped(queue);
  EXPECT_TRUE(Signalled(queue));
  Popped(queue);
  EXPECT_FALSE(Signalled(queue));
}

TEST(CommandQueue, LeavesTheTextAloneWhenEmpty) {
  CommandQueue queue;
  std::string text = "mine";
  EXPECT_FALSE(queue.Pop(text));
  EXPECT_EQ(text, "mine");
}

TEST(CommandQueue, TakesEmptyTexts) {
  CommandQueue queue;
  queue.Push("");
  queue.Push("");
  EXPECT_EQ(queue.size(), 2u);
  EXPECT_EQ(Popped(queue), "");
  EXPECT_EQ(Popped(queue), "");
  EXPECT_FALSE(Signalled(queue));
}

TEST(CommandQueue, TakesTheLongestTextThatAFrameCanHold) {
  CommandQueue queue;
  const std::string longest(8228, 'x');
  queue.Push(longest);
  EXPECT_EQ(Popped(queue), longest);
}

TEST(CommandQueue, DropsTextsBeyondTheirGreatestNumber) {
  CommandQueue queue;
  for (std::size_t i = 0; i < CommandQueue::kMostTexts; ++i) queue.Push(std::to_string(i));
  queue.Push("one too many");
  EXPECT_EQ(queue.size(), 4096u);
  for (std::size_t i = 0; i < CommandQueue::kMostTexts; ++i) ASSERT_EQ(Popped(queue), std::to_string(i));
  EXPECT_EQ(Popped(queue), "(empty)");
}

TEST(CommandQueue, DropsATextThatDoesNotFitIntoAMebibyteButTakesAShorterOne) {
  CommandQueue queue;
  const std::string text(8190, 'x');  // 8192 bytes with its length
  for (int i = 0; i < 127; ++i) queue.Push(text);
  queue.Push(text + "y");
  EXPECT_EQ(queue.size(), 127u);
  queue.Push(text);
  EXPECT_EQ(queue.size(), 128u);
}

TEST(CommandQueue, HasRoomAgainWhenATextHasBeenTaken) {
  CommandQueue queue;
  const std::string text(8190, 'x');
  for (int i = 0; i < 129; ++i) queue.Push(text);
  EXPECT_EQ(queue.size(), 128u);
  Popped(queue);
  queue.Push(text);
  EXPECT_EQ(queue.size(), 128u);
}

TEST(CommandQueue, HoldsAMebibyteToTheLastByte) {
  CommandQueue queue;
  const std::string text(8190, 'x');
  for (int i = 0; i < 128; ++i) queue.Push(text);
  EXPECT_EQ(queue.size(), 128u);
  for (int i = 0; i < 128; ++i) ASSERT_EQ(Popped(queue), text);
}

TEST(CommandQueue, TakesTextsAgainAfterAFlood) {
  CommandQueue queue;
  for (int i = 0; i < 100000; ++i) queue.Push("GT_MDT,HAN,VAN");
  EXPECT_EQ(queue.size(), CommandQueue::kMostTexts);
  while (Popped(queue) != "(empty)") {
  }
  queue.Push("A");
  EXPECT_TRUE(Signalled(queue));
  EXPECT_EQ(Popped(queue), "A");
}

TEST(CommandQueue, KeepsTextsWholeWhereTheRingWraps) {
  CommandQueue queue;
  std::deque<std::string> expected;
  for (int i = 0; i < 20000; ++i) {
    expected.push_back(std::string(static_cast<std::size_t>(i % 97), static_cast<char>('a' + i % 26)));
    queue.Push(expected.back());
    if (i < 50) continue;
    ASSERT_EQ(Popped(queue), expected.front());
    expected.pop_front();
  }
}

TEST(CommandQueue, IsAFirstInFirstOutQueueUnderAnyUse) {
  EXPECT_TRUE(rc::check([] {
    CommandQueue queue;
    std::deque<std::string> expected;
    for (int step = *rc::gen::inRange(0, 200); step > 0; --step) {
      if (*rc::gen::arbitrary<bool>()) {
        expected.push_back(std::string(*rc::gen::inRange<std::size_t>(0, 3000), 'a'));
        if (!expected.back().empty()) expected.back().back() = static_cast<char>(step);
        queue.Push(expected.back());
      } else if (!expected.empty()) {
        RC_ASSERT(Popped(queue) == expected.front());
        expected.pop_front();
      }
      RC_ASSERT(queue.size() == expected.size());
      RC_ASSERT(Signalled(queue) == !expected.empty());
    }
  }));
}

TEST(CommandQueue, LosesNothingBetweenTwoThreads) {
  CommandQueue queue;
  constexpr int kTexts = 20000;
  std::thread writer([&] {
    for (int i = 0; i < kTexts; ++i) {
      while (queue.size() == CommandQueue::kMostTexts) std::this_thread::yield();
      queue.Push(std::to_string(i));
    }
  });
  int wrong = 0;
  for (int i = 0; i < kTexts; ++i) {
    host::WaitForSingleObject(queue.message_event().handle(), INFINITE);
    if (Popped(queue) != std::to_string(i)) ++wrong;
  }
  writer.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
