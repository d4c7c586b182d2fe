// POST /service: the exports by name.
#include <nlohmann/json.hpp>

#include "support/controller.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

class ServiceTest : public SimulatorTest {
 protected:
  Json Call2(const std::string& call, const Json& members) const {
    Json body = members;
    body["call"] = call;
    return Ask("POST", "/service", body);
  }
};

TEST_F(ServiceTest, HandleZeroOrNoneIsTheServiceThatWasOpened) {
  EXPECT_EQ(Call2("QCMSuspendComm", {})["result"], 0);
  EXPECT_EQ(Call2("QCMResumeComm", {{"handle", 0}})["result"], 0);
  EXPECT_EQ(Call2("QCMSuspendComm", {{"handle", nullptr}})["result"], 0);
}

TEST_F(ServiceTest, RawPassesTheHandleAsItStands) {
  EXPECT_EQ(Call2("QCMSuspendComm", {{"handle", 0}, {"raw", true}})["result"], -14);
  EXPECT_EQ(Call2("QCMSuspendComm", {{"handle", 12345}})["result"], -14);
}

TEST_F(ServiceTest, OpenAnswersAHandleThatOtherCallsTake) {
  const Json handle = Call2("QCMOpenComm", {{"args", {{"port", "combt"}}}})["result"];
  EXPECT_GT(handle, 0);
  EXPECT_EQ(Call2("QCMGetPortName", {{"handle", handle}})["text"], "COMBT:");
  EXPECT_EQ(Call2("QCMGetPortName", {})["text"], "COM5:");
  EXPECT_EQ(Call2("QCMCloseComm", {{"handle", handle}})["result"], 0);
}

TEST_F(ServiceTest, NoPortIsNoName) {
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  EXPECT_EQ(Call2("QCMOpenComm", {})["result"], 0);
  EXPECT_EQ(Call2("QCMOpenComm", {{"args", {{"port", nullptr}}}})["result"], 0);
}

TEST_F(ServiceTest, AServiceOpenedLaterTakesTheFirstOnesPlace) {
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  EXPECT_EQ(Service("QCMSuspendComm"), -14);
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_EQ(Service("QCMSuspendComm"), 0);
}

TEST_F(ServiceTest, PortNameBufferIsShownWithWhatWasNotWritten) {
  const Json answer = Call2("QCMGetPortName", {{"args", {{"bytes", 14}}}});
  EXPECT_EQ(answer["text"], "COM5:");
  EXPECT_EQ(answer["record"], "43004F004D0035003A000000CDCD");
}

TEST_F(ServiceTest, PortNameNeedsRoomForItsZero) {
  const Json answer = Call2("QCMGetPortName", {{"args", {{"bytes", 10}}}});
  EXPECT_EQ(answer["result"], -1);
  EXPECT_EQ(answer["text"], "");
  EXPECT_EQ(answer["record"], "0000CDCDCDCDCDCDCDCD");
}

TEST_F(ServiceTest, NullBytesIsNoBuffer) {
  const Json answer = Call2("QCMGetPortName", {{"args", {{"bytes", nullptr}}}});
  EXPECT_EQ(answer["result"], -1);
  EXPECT_FALSE(answer.contains("record"));
  EXPECT_EQ(Call2("QCMGetLastMsrParams", {{"args", {{"bytes", nullptr}}}})["result"], -1);
}

TEST_F(ServiceTest, EveryRecordIsAnsweredUntouchedBeforeThereIsOne) {
  const std::pair<const char*, std::size_t> records[] = {
      {"QCMGetLastMsrParams", 24},         {"QCMGetLastExecutedProcessInfo", 1040},
      {"QCMGetLastTurnParams", 48},        {"QCMGetLastTargetSearchParams", 40},
      {"QCMGetLastSavedImageParams", 532}, {"QCMGetLastTargetSearchResult", 36}};
  for (const auto& [name, bytes] : records) {
    std::string untouched;
    for (std::size_t i = 0; i < bytes; ++i) untouched += "CD";
    const Json answer = Call2(name, {});
    EXPECT_EQ(answer["result"], -13) << name;
    EXPECT_EQ(answer["record"], untouched) << name;
  }
}

TEST_F(ServiceTest, RoundingStepIsPassedOn) {
  EXPECT_EQ(Service("QCMSetAngleRoundParams", {{"step", 0.1}}), 0);
  EXPECT_EQ(Service("QCMSetAngleRoundParams", {{"step", 60}}), 0);
  EXPECT_EQ(Service("QCMSetAngleRoundParams", {{"step", 60.5}}), -1);
}

TEST_F(ServiceTest, WindowsAreNamedByTheirNumbers) {
  const unsigned window = MakeWindow();
  EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", window}, {"message", 0x8000}}), 0);
  EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", window}, {"message", 0x7FFF}}), -1);
  EXPECT_EQ(Service("QCMUnregisterNotifyWindow", {{"window", window}}), 0);
  EXPECT_EQ(Service("QCMUnregisterNotifyWindow", {{"window", window}}), -13);
  for (const Json& none : {Json(nullptr), Json(0), Json(999), Json(4294967295)}) {
    EXPECT_EQ(Service("QCMRegisterNotifyWindow", {{"window", none}, {"message", 0x8000}}), -1) << none;
  }
}

TEST_F(ServiceTest, WrongRequestsAreRefusedWithoutACall) {
  const Json wrong[] = {Json::object(),
                        {{"call", "CreateFileW"}},
                        {{"call", 7}},
                        {{"call", "QCMSuspendComm"}, {"handle", -1}},
                        {{"call", "QCMSuspendComm"}, {"handle", "1"}},
                        {{"call", "QCMSuspendComm"}, {"raw", 1}},
                        {{"call", "QCMSuspendComm"}, {"args", 1}},
                        {{"call", "QCMSuspendComm"}, {"args", {{"strange", 1}}}},
                        {{"call", "QCMOpenComm"}, {"args", {{"port", 5}}}},
                        {{"call", "QCMGetPortName"}, {"args", {{"bytes", 65537}}}},
                        {{"call", "QCMGetPortName"}, {"args", {{"bytes", -1}}}},
                        {{"call", "QCMGetLastMsrParams"}, {"args", {{"bytes", 23}}}},
                        {{"call", "QCMSetAngleRoundParams"}, {"args", {{"step", "1"}}}}};
  for (const Json& body : wrong) EXPECT_EQ(Call("POST", "/service", body).status, 400) << body;
  EXPECT_EQ(Service("QCMResumeComm"), 0);
}

TEST_F(ServiceTest, TheNinthOpenIsRefused) {
  Ask("PATCH", "/state", {{"ports", {{"shared", true}}}});
  for (int service = 2; service <= 8; ++service) EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0) << service;
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_EQ(State()["resources"]["services"], 8);
}

}  // namespace
}  // namespace qxtest
