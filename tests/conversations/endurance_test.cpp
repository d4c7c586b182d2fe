// A long day of a running qxsim: thousands of commands in pieces among messages, and a service that opens and closes
// time and again. With QX_LONG_TESTS set all of it, else a tenth.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "conversations/process_tree.h"
#include "support/controller.h"
#include "support/qxsim_process.h"

namespace {

using nlohmann::json;
using qxtest::wire::Controller;
using qxtest::wire::Received;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Clock = std::chrono::steady_clock;
using Random = std::mt19937;

int Whole(int all) { return std::getenv("QX_LONG_TESTS") != nullptr ? all : all / 10; }

unsigned Seed() {
  const char* given = std::getenv("QX_SEED");
  return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
}

unsigned Below(Random& random, unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random); }

double SecondsSince(Clock::time_point begin) { return std::chrono::duration<double>(Clock::now() - begin).count(); }

/// A command and what must come for it before its ACK.
struct Exchange {
  std::string command;
  std::string message;  // empty: none
  std::string reply;    // empty: none
};

/// Commands whose answers differ from one another: a lost, doubled or misplaced one shows.
class Commands {
 public:
  Exchange Next(Random& random) {
    switch (Below(random, 5)) {
      case 0:
      case 1:
        return SetAngle();
      case 2:
        return {"GT_MDT,HAN", {}, "MDT,HAN=" + angle_};
      case 3:
        return GetModes(random);
      default:
        return {"GT_" + std::to_string(Below(random, 1000)), {}, "ER_CMD"};
    }
  }

 private:
  // Another angle each time: whole minutes are sent as they are written.
  Exchange SetAngle() {
    const int minute = ++set_ % 21600;
    const std::string minutes = std::to_string(100 + minute % 60).substr(1);
    angle_ = std::to_string(minute / 60) + "." + minutes + "000";
    return {"ST_HAN,HAN=" + angle_, "MDT,HAN=" + angle_, {}};
  }

  static Exchange GetModes(Random& random) {
    Exchange exchange = {"GT_OMD", {}, "OMD"};
    for (const char* mode : {"ANG=1", "TLT=1", "DST=0", "KEY=1"}) {
      if (Below(random, 2) == 0) continue;
      exchange.command += "," + std::string(mode).substr(0, 3);
      exchange.reply += "," + std::string(mode);
    }
    return exchange;
  }

  int set_ = 0;
  std::string angle_ = "0.00000";
};

/// The world: presses keys and tilts the instrument, one after the other, until the object goes.
class World {
 public:
  World(const std::string& url, unsigned seed) : http_(url), random_(seed), thread_([this] { Live(); }) {}
  ~World() { End(); }

  void End() {
    ended_ = true;
    if (thread_.joinable()) thread_.join();
  }

  /// After End: the messages that these events make, keys and tilts each in their order.
  const std::vector<std::string>& keys() const { return keys_; }
  const std::vector<std::string>& tilts() const { return tilts_; }
  const std::string& failure() const { return failure_; }

 private:
  void Live() {
    try {
      while (!ended_) Below(random_, 2) == 0 ? PressKey() : Tilt();
    } catch (const std::exception& error) {
      failure_ = error.what();
    }
  }

  void PressKey() {
    const unsigned code = 16 + static_cast<unsigned>(keys_.size()) % 0xEF;
    http_.Ask("POST", "/api/v1/keys", {{"code", code}});
    char text[16];
    std::snprintf(text, sizeof text, "MDT,KEY=%02X", code);
    keys_.emplace_back(text);
  }

  void Tilt() {
    constexpr double kArcSecond = 3.141592653589793 / 648000;
    const int tilt = 1 + static_cast<int>(tilts_.size()) % 3000;
    http_.Ask("PATCH", "/api/v1/state", {{"tilt", {{"XTL", tilt * kArcSecond}}}});
    char text[32];
    std::snprintf(text, sizeof text, "MDT,XTL=0.%02d%02d0", tilt / 60, tilt % 60);
    tilts_.emplace_back(text);
  }

  qxtest::HttpClient http_;
  Random random_;
  std::atomic<bool> ended_{false};
  std::vector<std::string> keys_;
  std::vector<std::string> tilts_;
  std::string failure_;
  std::thread thread_;
};

/// Keeps some commands in flight, written in pieces, and compares what comes with what must.
class Talk {
 public:
  Talk(Controller& controller, unsigned seed, int commands) : controller_(controller), random_(seed), left_(commands) {}

  /// False, with failure() set, at the first thing that is not as it must be.
  bool Run() {
    while (failure_.empty() && (left_ > 0 || !in_flight_.empty())) {
      Fill();
      SendAPiece();
      Take(unsent_.empty() && !Fills() ? seconds(20) : seconds(0));
    }
    return failure_.empty();
  }

  /// Takes messages that nobody asked for until there are so many.
  void TakeMessages(std::size_t count) {
    while (failure_.empty() && keys_.size() + tilts_.size() < count) {
      if (!Take(seconds(10))) failure_ = "messages are missing";
    }
  }

  const std::string& failure() const { return failure_; }
  const std::vector<std::string>& keys() const { return keys_; }
  const std::vector<std::string>& tilts() const { return tilts_; }
  int answered() const { return answered_; }

 private:
  static constexpr std::size_t kMostInFlight = 12;

  bool Fills() const { return left_ > 0 && in_flight_.size() < (rests_ ? 1 : kMostInFlight); }

  // Now and then all is answered before the next command is sent, so that the world gets its turn.
  void Rest() {
    if (rests_) std::this_thread::sleep_for(std::chrono::microseconds(Below(random_, 5000)));
    rests_ = Below(random_, 20) == 0;
  }

  void Fill() {
    if (!Fills()) return;
    Rest();
    in_flight_.push_back(commands_.Next(random_));
    unsent_ += qxtest::wire::CommandFrame(in_flight_.back().command);
    --left_;
  }

  void SendAPiece() {
    if (unsent_.empty()) return;
    const std::size_t piece =
        std::min<std::size_t>(unsent_.size(), 1 + Below(random_, Below(random_, 8) == 0 ? 80 : 12));
    controller_.Send(unsent_.substr(0, piece));
    unsent_.erase(0, piece);
  }

  bool Take(milliseconds time) {
    const auto received = controller_.Read(time);
    if (!received && time.count() > 0) failure_ = "nothing comes; waiting for " + Waiting();
    if (!received) return false;
    Check(*received);
    return true;
  }

  std::string Waiting() const { return in_flight_.empty() ? "nothing" : in_flight_.front().command; }

  void Check(const Received& received) {
    const bool message = received.kind == Received::Kind::kMessage;
    if (message && received.text.rfind("MDT,KEY=", 0) == 0) {
      keys_.push_back(received.text);
    } else if (message && received.text.rfind("MDT,XTL=", 0) == 0) {
      tilts_.push_back(received.text);
    } else if (!CheckAnswer(received)) {
      failure_ = "answer " + std::to_string(answered_ + 1) + " to " + Waiting() + ": \"" + received.text +
                 "\" of kind " + std::to_string(static_cast<int>(received.kind));
    }
  }

  bool CheckAnswer(const Received& received) {
    if (in_flight_.empty()) return false;
    Exchange& exchange = in_flight_.front();
    std::string* expected = received.kind == Received::Kind::kMessage ? &exchange.message
                            : received.kind == Received::Kind::kReply ? &exchange.reply
                                                                      : nullptr;
    if (expected != nullptr) return !received.text.empty() && std::exchange(*expected, {}) == received.text;
    const bool whole = exchange.message.empty() && exchange.reply.empty();
    if (received.kind != Received::Kind::kAcknowledged || !whole) return false;
    in_flight_.pop_front();
    ++answered_;
    return true;
  }

  Controller& controller_;
  Random random_;
  Commands commands_;
  int left_;
  bool rests_ = false;
  int answered_ = 0;
  std::deque<Exchange> in_flight_;
  std::string unsent_;
  std::vector<std::string> keys_;
  std::vector<std::string> tilts_;
  std::string failure_;
};

TEST(Endurance, EachOfThousandsOfCommandsInPiecesIsAnsweredInItsTurnAmongMessages) {
  const unsigned seed = Seed();
  const int commands = Whole(10000);
  SCOPED_TRACE("QX_SEED=" + std::to_string(seed));
  qxtest::QxsimProcess qxsim({"--still"});
  Controller controller(qxsim.port());
  ASSERT_TRUE(controller.Command("ST_OMD,ANG=1,TLT=1,KEY=1").acknowledged);
  const auto begin = Clock::now();
  Talk talk(controller, seed, commands);
  World world(qxsim.url(), seed + 1);
  EXPECT_TRUE(talk.Run()) << talk.failure();
  world.End();
  EXPECT_EQ(world.failure(), "");
  talk.TakeMessages(world.keys().size() + world.tilts().size());
  EXPECT_EQ(talk.failure(), "");
  EXPECT_EQ(talk.answered(), commands);
  EXPECT_EQ(talk.keys(), world.keys());
  EXPECT_EQ(talk.tilts(), world.tilts());
  EXPECT_EQ(controller.Read(milliseconds(300)), std::nullopt);
  std::cout << "seed " << seed << ": " << talk.answered() << " commands among " << talk.keys().size() << " keys and "
            << talk.tilts().size() << " tilts in " << SecondsSince(begin) << " s\n";
}

/// The service of a running qxsim as its application calls it.
class Service {
 public:
  explicit Service(qxtest::QxsimProcess& qxsim) : qxsim_(qxsim) {}

  json Call(const std::string& call, json args = json::object()) {
    return qxsim_.http().Ask("POST", "/api/v1/service", {{"call", call}, {"args", std::move(args)}})["result"];
  }

  json Resources() { return qxsim_.http().Ask("GET", "/api/v1/state")["resources"]; }

  /// Opens, suspends, resumes and closes it.
  void Cycle() {
    ASSERT_NE(Call("QCMOpenComm", {{"port", "COM5:"}}), 0);
    ASSERT_EQ(Call("QCMSuspendComm"), 0);
    ASSERT_EQ(Call("QCMResumeComm"), 0);
    ASSERT_EQ(Call("QCMCloseComm"), 0);
  }

 private:
  qxtest::QxsimProcess& qxsim_;
};

TEST(Endurance, AServiceOpenedSuspendedResumedAndClosedTimeAndAgainLeavesNothingBehind) {
  const int cycles = Whole(1000);
  qxtest::QxsimProcess qxsim({"--still"});
  Service service(qxsim);
  ASSERT_EQ(service.Call("QCMCloseComm"), 0);
  for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(service.Cycle());
  const json before = service.Resources();
  const auto begun = qxtest::CountProcessTree(qxsim.process().id());
  EXPECT_EQ(before["threads"], 0);
  EXPECT_EQ(before["services"], 0);
  const auto begin = Clock::now();
  for (int i = 0; i < cycles; ++i) ASSERT_NO_FATAL_FAILURE(service.Cycle()) << "in cycle " << i;
  const double took = SecondsSince(begin);
  EXPECT_EQ(service.Resources(), before);
  const auto ended = qxtest::CountProcessTree(qxsim.process().id());
  // The HTTP server makes its own threads as it needs them: a few, however many cycles.
  EXPECT_LT(ended.threads, begun.threads + 10);
  EXPECT_LT(ended.descriptors, begun.descriptors + 50);
  ASSERT_NE(service.Call("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_TRUE(Controller(qxsim.port()).Command("GT_OMD,KEY").acknowledged);
  EXPECT_EQ(qxsim.Stop(), 0);
  std::cout << cycles << " cycles in " << took << " s: " << before << ", of the system " << begun.threads << " -> "
            << ended.threads << " threads, " << begun.descriptors << " -> " << ended.descriptors << " descriptors\n";
}

}  // namespace
