// The service of the measuring tests and its instrument.
#include "unit/measure/measuring_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "instrument/distance_meter.h"
#include "instrument/event_window.h"
#include "instrument/switches.h"

namespace qxtest {

namespace {

using host::instrument::DistanceMeter;
using host::instrument::FocusSide;

constexpr std::uint32_t kNeverMs = 3600000;

std::string CallText(const host::CallRecord& record, std::int64_t ordinal) {
  std::ostringstream text;
  text << ordinal << '(';
  for (std::size_t i = 0; i < record.args.size(); ++i) {
    if (i != 0) text << ", ";
    if (const auto* number = std::get_if<std::int64_t>(&record.args[i])) text << *number;
    if (const auto* real = std::get_if<double>(&record.args[i])) text << *real;
  }
  text << ')';
  return text.str();
}

}  // namespace

double Tenths(double tenths) { return tenths * 3.141592653589793 * 1.54320987654321e-7; }

InstrumentAtRest::InstrumentAtRest() {
  Rest();
  DistanceMeter::Instance().SetTakesMs(kNeverMs);  // only the test gives distances
  host::EnableCallLog(true);
  ForgetCalls();
}

InstrumentAtRest::~InstrumentAtRest() {
  host::EnableCallLog(false);
  Rest();
}

void InstrumentAtRest::Rest() {
  host::ClearFaults();
  host::instrument::ResetEventWindow();
  Point([](host::instrument::Pose& pose) { pose = {}; });
  DistanceMeter::Instance().Reset();
  for (std::int32_t number = 0; number < host::instrument::Switches::kCount; ++number) {
    host::instrument::Switches::Instance().Set(number, 0);
  }
  const auto focus = FocusSide::Instance();
  focus->Complete(true);
  focus->Change([](host::instrument::FocusBlockData& block) { block = {}; });
  focus->Reset();
}

void InstrumentAtRest::GiveDistance(double metres) {
  DistanceMeter::Instance().SetSlope(metres);
  DistanceMeter::Instance().SetValid(true);
}

void InstrumentAtRest::Fail(int ordinal, std::int64_t result, std::uint64_t nth, std::uint64_t times) {
  host::Fault fault;
  fault.library = "QxSystem";
  fault.call = std::int64_t{ordinal};
  fault.nth = nth;
  fault.times = times;
  fault.result = result;
  host::AddFault(fault);
}

std::vector<std::string> InstrumentAtRest::Calls(std::initializer_list<int> ordinals) const {
  std::vector<std::string> calls;
  for (const host::CallRecord& record : host::CallsSince(calls_begin_, nullptr)) {
    const auto* ordinal = std::get_if<std::int64_t>(&record.call);
    if (record.library != "QxSystem" || ordinal == nullptr) continue;
    if (std::find(ordinals.begin(), ordinals.end(), *ordinal) == ordinals.end()) continue;
    calls.push_back(CallText(record, *ordinal));
  }
  return calls;
}

std::string MeasuringService::Answer(std::string_view command) {
  const std::string answer = line.Exchange(command);
  if (answer == kAck) return "ok";
  constexpr std::size_t kAround = 6;  // "R<", ">", checksum, CR, ACK
  const std::string text = answer.size() < kAround ? answer : answer.substr(2, answer.size() - kAround);
  EXPECT_EQ(answer, ReplyFrame(text) + std::string(kAck));
  return text;
}

std::string MeasuringService::WrittenOfSuspended(std::string_view command) {
  Locked([&] {  // the command is in hand, and what it writes waits for the lock
    line.Send(CommandFrame(command));
    line.Send(CommandFrame("ST_OMD,KEY=1"));
    manager.Suspend();
  });
  EXPECT_TRUE(WaitUntil([&] {
    qxcm::Guard guard(manager.lock());
    return manager.measured_data().output_modes().key == 1;
  }));
  manager.Resume();
  line.Send(CommandFrame("GT_OMD"));
  const std::string end = ReplyFrame("OMD");
  std::string written;
  WaitUntil([&] {
    written += line.Take();
    return written.find(end) != std::string::npos;
  });
  written.erase(written.find(end));
  written.erase(std::remove(written.begin(), written.end(), kAck.front()), written.end());
  return written;
}

std::string MeasuringService::Event(std::uint32_t mask) {
  manager.HandleEvent(mask);
  return line.Take();
}

std::string MeasuringService::Await(std::string_view message) {
  const std::string frame = MessageFrame(message);
  std::string all;
  WaitUntil([&] {
    all += line.Take();
    return all.find(frame) != std::string::npos;
  });
  return all;
}

void MeasuringService::Locked(const std::function<void()>& work) {
  qxcm::Guard guard(manager.lock());
  work();
}

}  // namespace qxtest
