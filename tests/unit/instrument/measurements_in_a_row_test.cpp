// A controller that asks for the next measurement as soon as it has a distance.
#include <gtest/gtest.h>

#include <string>

#include "instrument/distance_meter.h"
#include "unit/instrument/event_sink.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

// The stop and the end of one measurement must reach neither the next measurement nor its single shot.
TEST(MR_DST, SingleMeasurementsInARowEndEachAfterOneDistance) {
  MeasuringService service;
  const EventSink sink([&](std::uint32_t mask) { service.manager.HandleEvent(mask); });
  auto& meter = host::instrument::DistanceMeter::Instance();
  meter.SetTakesMs(1);
  service.Answer("ST_OMD,DST=1");
  for (int round = 0; round < 400; ++round) {
    service.line.Send(CommandFrame("MR_DST,REP=0"));
    ASSERT_NE(service.Await("MDT,SDS=10.0000").find("SDS"), std::string::npos) << "measurement " << round;
    if (round % 2 == 0) continue;  // the next one at once
    ASSERT_TRUE(WaitUntil([&] { return !meter.state().running; })) << "measurement " << round;
  }
}

}  // namespace
}  // namespace qxtest
