// The service of the distance tests.
#ifndef QXTEST_UNIT_MEASURE_DISTANCE_SERVICE_H
#define QXTEST_UNIT_MEASURE_DISTANCE_SERVICE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QXCommMgr.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {

struct DistanceService : MeasuringService {
  /// The last request as the application reads it: "mode target single offset".
  std::string Request() {
    QCM_MSR_PARAMS request = {};
    if (!manager.records().Fetch(&request)) return "none";
    return std::to_string(request.mode) + " " + std::to_string(request.target) + " " +
           std::to_string(request.single_shot) + " " + std::to_string(request.offset);
  }
  std::vector<std::string> StartsAndStops() const { return Calls({5, 6}); }
  /// The message about a distance in this output mode.
  std::string Report(const std::string& mode, double metres) {
    EXPECT_EQ(Answer("ST_OMD,DST=" + mode), "ok");
    GiveDistance(metres);
    return Event(kDistanceReady);
  }
};

}  // namespace qxtest

#endif
