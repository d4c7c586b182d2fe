// ST_PWR.
#include "common/system/power.h"

#include <gtest/gtest.h>

#include <string>

#include "common/kernel/handles.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

/// Without the calls that keep the instrument awake at every command.
Texts PowerCalls(const ControllerService& service) {
  Texts calls;
  for (const std::string& call : service.PlatformCalls({"SetSystemPowerState", "CreateProcessW"})) {
    if (call != "SetSystemPowerState(null, 65536, 4096)") calls.push_back(call);
  }
  return calls;
}

TEST(ST_PWR, SuspendsTheController) {
  ControllerService service;
  EXPECT_EQ(service.Answer("ST_PWR,MAN=STB"), "ok");
  EXPECT_EQ(PowerCalls(service), Texts{"SetSystemPowerState(null, 2097152, 0)"});
  EXPECT_EQ(host::PowerState(), host::kPowerSuspend);
}

TEST(ST_PWR, RestartsTheController) {
  ControllerService service;
  EXPECT_EQ(service.Answer("ST_PWR,MAN=RBT"), "ok");
  EXPECT_EQ(PowerCalls(service), Texts{"SetSystemPowerState(null, 8388608, 0)"});
  EXPECT_EQ(host::PowerState(), host::kPowerReset);
}

TEST(ST_PWR, SwitchesTheControllerOffThroughItsUtility) {
  ControllerService service;
  EXPECT_EQ(service.Answer("ST_PWR,MAN=DWN"), "ok");
  EXPECT_EQ(PowerCalls(service), Texts{"CreateProcessW(opvutil.exe, -fulloff, null, null, 0, 0, null, null, null)"});
}

TEST(ST_PWR, LeavesTheUtilitysHandlesOpen) {
  ControllerService service;
  const std::size_t handles = host::LibraryHandles();
  service.Answer("ST_PWR,MAN=DWN");
  EXPECT_EQ(host::LibraryHandles(), handles + 2);
}

TEST(ST_PWR, RefusesEveryOtherMode) {
  ControllerService service;
  for (const char* command :
       {"ST_PWR", "ST_PWR,MAN", "ST_PWR,MAN=dwn", "ST_PWR,MAN=STBY", "ST_PWR,MAN=0", "ST_PWR,man=STB"}) {
    EXPECT_EQ(service.Answer(command), "ER_PRM") << command;
  }
  EXPECT_EQ(PowerCalls(service), Texts{});
}

TEST(ST_PWR, DoesNotLookAtThePlatformsResult) {
  ControllerService service;
  {
    const Failing failing("CreateProcessW", ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(service.Answer("ST_PWR,MAN=DWN"), "ok");
  }
  const Failing failing("SetSystemPowerState", ERROR_GEN_FAILURE, 1, 4);
  EXPECT_EQ(service.Answer("ST_PWR,MAN=STB"), "ok");
  EXPECT_EQ(service.Answer("ST_PWR,MAN=RBT"), "ok");
}

TEST(ST_PWR, IsKeptForToolsMode) {
  MemoryLine line;
  qxcm::CommManager service{u"COM5", line.MakeLink()};
  EXPECT_EQ(line.Exchange("ST_PWR,MAN=STB"), ReplyFrame("ER_CMD") + std::string(kAck));
}

}  // namespace
}  // namespace qxtest
