// A measuring service whose focus jobs end when the test says so.
#ifndef QXTEST_UNIT_MEASURE_FOCUSING_SERVICE_H
#define QXTEST_UNIT_MEASURE_FOCUSING_SERVICE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "instrument/focus_side.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {

using host::instrument::FocusAnswer;
using host::instrument::FocusBlockData;
using host::instrument::FocusSide;

struct Focusing : MeasuringService {
  Focusing() {
    side->SetAnswer(FocusAnswer::kSilence);
    side->SetTakesMs(0);
  }

  std::uint32_t BlockEvent() const { return side->Read().event; }
  void Change(const std::function<void(FocusBlockData&)>& change) const { side->Change(change); }
  /// Sends a command whose job ends by itself; returns what is sent but the ACK, in the end `message`.
  std::string Told(const std::string& command, const std::string& message) {
    line.Send(CommandFrame(command));
    std::string told;
    EXPECT_TRUE(WaitUntil([&] {
      told += line.Take();
      return told.find(kAck) != std::string::npos && told.find(MessageFrame(message)) != std::string::npos;
    })) << command;
    told.erase(std::remove(told.begin(), told.end(), kAck.front()), told.end());
    return told;
  }
  /// Ends the job once its operation has been started.
  void Complete(bool failed) {
    EXPECT_TRUE(WaitUntil([&] { return side->Complete(failed); }));
  }
  /// The message that tells the outcome of a job, which the focusing side ends so.
  std::string Outcome(const std::string& command, bool failed) {
    const std::string key = command.substr(7, 3);
    EXPECT_EQ(line.Exchange(command), kAck);
    Complete(failed);
    return Await("FOS," + key + (failed ? "=ER_FAL" : "=0"));
  }
  /// A job from its command to its success: the service takes the next one.
  bool FocusesAgain() { return Outcome("ST_FOC,AFO=1", false) == MessageFrame("FOS,AFO=0") && BlockEvent() == 0; }

  std::shared_ptr<FocusSide> side = FocusSide::Instance();
};

}  // namespace qxtest

#endif
