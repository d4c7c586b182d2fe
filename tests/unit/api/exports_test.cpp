// The exported functions: every result code of each, on the real port.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "api/open_services.h"
#include "common/ports/ports.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using qxtest::TestWindow;
using qxtest::World;

/// A service on "COM5:", open for one test.
struct Service {
  explicit Service(const QCM_WCHAR* port = u"COM5:") : handle(QCMOpenComm(port)) { EXPECT_NE(handle, 0u); }
  ~Service() { QCMCloseComm(handle); }

  World world;
  const QCM_HANDLE handle;
};

/// A handle that was open and is no more.
QCM_HANDLE ClosedHandle() {
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
  return handle;
}

// ---- QCMCloseComm

TEST(QCMCloseComm, ClosesOnce) {
  World world;
  const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
  EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
  EXPECT_EQ(QCMCloseComm(handle), QCM_NO_SERVICE);
}

TEST(QCMCloseComm, DoesNotKnowOtherHandles) {
  Service service;
  EXPECT_EQ(QCMCloseComm(0), QCM_NO_SERVICE);
  EXPECT_EQ(QCMCloseComm(service.handle + 1), QCM_NO_SERVICE);
  EXPECT_EQ(QCMCloseComm(0xFFFFFFFF), QCM_NO_SERVICE);
}

TEST(QCMCloseComm, FreesThePort) {
  World world;
  for (int i = 0; i < 3; ++i) {
    const QCM_HANDLE handle = QCMOpenComm(u"COM5:");
    EXPECT_NE(handle, 0u);
    EXPECT_EQ(QCMCloseComm(handle), QCM_OK);
  }
}

// ---- QCMSuspendComm, QCMResumeComm

TEST(QCMSuspendComm, FreesThePortAndKeepsTheService) {
  Service service;
  EXPECT_EQ(QCMSuspendComm(service.handle), QCM_OK);
  qxcm::Handle other(CreateFileW(u"COM5:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
  EXPECT_TRUE(other) << "another program can use the port";
}

TEST(QCMSuspendComm, MayBeCalledAgain) {
  Service service;
  EXPECT_EQ(QCMSuspendComm(service.handle), QCM_OK);
  EXPECT_EQ(QCMSuspendComm(service.handle), QCM_OK);
}

TEST(QCMSuspendComm, DoesNotKnowAClosedService) {
  World world;
  EXPECT_EQ(QCMSuspendComm(ClosedHandle()), QCM_NO_SERVICE);
}

TEST(QCMResumeComm, OpensThePortAgain) {
  Service service;
  QCMSuspendComm(service.handle);
  EXPECT_EQ(QCMResumeComm(service.handle), QCM_OK);
  EXPECT_EQ(service.world.controller().Exchange("GT_OMD"), qxtest::ReplyFrame("OMD") + std::string(qxtest::kAck));
}

TEST(QCMResumeComm, LeavesAnOpenPortAlone) {
  Service service;
  service.world.ForgetCalls();
  EXPECT_EQ(QCMResumeComm(service.handle), QCM_OK);
  EXPECT_TRUE(service.world.Calls({"CreateFileW"}).empty());
}

TEST(QCMResumeComm, TellsThatThePortCannotBeReopened) {
  Service service;
  QCMSuspendComm(service.handle);
  const qxtest::Failing fault("CreateFileW", ERROR_ACCESS_DENIED);
  EXPECT_EQ(QCMResumeComm(service.handle), QCM_PORT_FAILED);
  EXPECT_EQ(QCMResumeComm(service.handle), QCM_OK);
}

TEST(QCMResumeComm, DoesNotKnowAClosedService) {
  World world;
  EXPECT_EQ(QCMResumeComm(ClosedHandle()), QCM_NO_SERVICE);
}

// ---- QCMRegisterNotifyWindow, QCMUnregisterNotifyWindow

TEST(QCMRegisterNotifyWindow, TakesAWindowAndANumberOfItsRange) {
  Service service;
  TestWindow window;
  EXPECT_EQ(QCMRegisterNotifyWindow(service.handle, window.handle(), 0x8000), QCM_OK);
  EXPECT_EQ(QCMRegisterNotifyWindow(service.handle, window.handle(), 0xBFFF), QCM_OK);
}

TEST(QCMRegisterNotifyWindow, RefusesNumbersOutsideItsRangeAndWhatIsNoWindow) {
  Service service;
  TestWindow window;
  EXPECT_EQ(QCMRegisterNotifyWindow(service.handle, window.handle(), 0x7FFF), QCM_BAD_ARGUMENT);
  EXPECT_EQ(QCMRegisterNotifyWindow(service.handle, window.handle(), 0xC000), QCM_BAD_ARGUMENT);
  EXPECT_EQ(QCMRegisterNotifyWindow(service.handle, nullptr, 0x8000), QCM_BAD_ARGUMENT);
}

TEST(QCMRegisterNotifyWindow, DoesNotKnowAClosedService) {
  World world;
  EXPECT_EQ(QCMRegisterNotifyWindow(ClosedHandle(), nullptr, 0), QCM_NO_SERVICE);
}

TEST(QCMUnregisterNotifyWindow, TakesAWindowOffOnce) {
  Service service;
  TestWindow window;
  QCMRegisterNotifyWindow(service.handle, window.handle(), 0x8000);
  EXPECT_EQ(QCMUnregisterNotifyWindow(service.handle, window.handle()), QCM_OK);
  EXPECT_EQ(QCMUnregisterNotifyWindow(service.handle, window.handle()), QCM_NOTHING_RECORDED);
}

TEST(QCMUnregisterNotifyWindow, DoesNotKnowAClosedService) {
  World world;
  EXPECT_EQ(QCMUnregisterNotifyWindow(ClosedHandle(), nullptr), QCM_NO_SERVICE);
}

TEST(QCMUnregisterNotifyWindow, KnowsTheWindowsOfItsOwnServiceOnly) {
  Service service;
  host::AttachPty("COMBT:");
  const QCM_HANDLE other = QCMOpenComm(u"COMBT:");
  TestWindow window;
  QCMRegisterNotifyWindow(service.handle, window.handle(), 0x8000);
  EXPECT_EQ(QCMUnregisterNotifyWindow(other, window.handle()), QCM_NOTHING_RECORDED);
  QCMCloseComm(other);
}

// ---- QCMGetPortName

/// The result of a call with a buffer of so many bytes, and what is in the buffer behind it.
struct PortName {
  PortName(QCM_HANDLE handle, QCM_UINT32 bytes) {
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    result = QCMGetPortName(handle, buffer, bytes);
  }
  std::u16string text() const { return std::u16string(buffer, 8); }

  QCM_WCHAR buffer[8];
  QCM_INT32 result;
};

TEST(QCMGetPortName, CopiesTheNormalisedNameWithItsZero) {
  const Service service(u"com1");
  const PortName name(service.handle, 16);
  EXPECT_EQ(name.result, QCM_OK);
  EXPECT_EQ(name.text(), std::u16string(u"COM1:\0##", 8));
}

TEST(QCMGetPortName, NeedsRoomForTheNameAndItsZero) {
  const Service service;
  EXPECT_EQ(PortName(service.handle, 12).text(), std::u16string(u"COM5:\0##", 8));
  EXPECT_EQ(PortName(service.handle, 12).result, QCM_OK);
  EXPECT_EQ(PortName(service.handle, 13).result, QCM_OK);
  for (const QCM_UINT32 bytes : {11u, 10u, 3u, 2u}) {
    EXPECT_EQ(PortName(service.handle, bytes).result, QCM_BAD_ARGUMENT) << bytes;
    EXPECT_EQ(PortName(service.handle, bytes).text(), std::u16string(u"\0#######", 8)) << bytes;
  }
}

TEST(QCMGetPortName, WritesNothingWithoutRoomForAZero) {
  const Service service;
  for (const QCM_UINT32 bytes : {0u, 1u}) {
    EXPECT_EQ(PortName(service.handle, bytes).result, QCM_BAD_ARGUMENT);
    EXPECT_EQ(PortName(service.handle, bytes).text(), u"########");
    EXPECT_EQ(PortName(0, bytes).text(), u"########");
  }
}

TEST(QCMGetPortName, RefusesAMissingBuffer) {
  const Service service;
  EXPECT_EQ(QCMGetPortName(service.handle, nullptr, 100), QCM_BAD_ARGUMENT);
}

TEST(QCMGetPortName, EmptiesTheBufferForAnUnknownHandle) {
  World world;
  EXPECT_EQ(PortName(0, 16).result, QCM_NO_SERVICE);
  EXPECT_EQ(PortName(0, 16).text(), std::u16string(u"\0#######", 8));
  EXPECT_EQ(QCMGetPortName(0, nullptr, 16), QCM_NO_SERVICE);
}

// ---- QCMSetAngleRoundParams

TEST(QCMSetAngleRoundParams, TakesATenthToSixtySeconds) {
  const Service service;
  for (const double step : {0.1, 1.0, 60.0}) EXPECT_EQ(QCMSetAngleRoundParams(service.handle, step), QCM_OK) << step;
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double step : {0.0, -1.0, std::nextafter(0.1, 0), std::nextafter(60.0, 61), 1e300, infinity, -infinity,
                            std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(QCMSetAngleRoundParams(service.handle, step), QCM_BAD_ARGUMENT) << step;
  }
}

TEST(QCMSetAngleRoundParams, LooksForTheServiceFirst) {
  World world;
  EXPECT_EQ(QCMSetAngleRoundParams(ClosedHandle(), 0.0), QCM_NO_SERVICE);
}

// ---- QCMGetLast...

/// The six exports behave alike.
template <class Record, QCM_INT32 (*Get)(QCM_HANDLE, Record*)>
void ExpectFetches() {
  const Service service;
  Record record;
  std::memset(&record, 0xCD, sizeof record);
  const Record untouched = record;
  EXPECT_EQ(Get(service.handle, &record), QCM_NOTHING_RECORDED);
  EXPECT_EQ(Get(0, &record), QCM_NO_SERVICE);
  EXPECT_EQ(Get(service.handle, nullptr), QCM_BAD_ARGUMENT);
  EXPECT_EQ(Get(0, nullptr), QCM_NO_SERVICE);
  EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);

  Record stored;
  std::memset(&stored, 0x5A, sizeof stored);
  qxcm::OpenServices::Instance().Find(service.handle)->records().Store(&stored);
  EXPECT_EQ(Get(service.handle, &record), QCM_OK);
  EXPECT_EQ(Get(service.handle, &record), QCM_OK);
  EXPECT_EQ(std::memcmp(&record, &stored, sizeof record), 0);
}

TEST(QCMGetLastMsrParams, FetchesTheRecord) { ExpectFetches<QCM_MSR_PARAMS, QCMGetLastMsrParams>(); }
TEST(QCMGetLastExecutedProcessInfo, FetchesTheRecord) {
  ExpectFetches<QCM_EXECUTED_PROCESS_INFO, QCMGetLastExecutedProcessInfo>();
}
TEST(QCMGetLastTurnParams, FetchesTheRecord) { ExpectFetches<QCM_TURN_PARAMS, QCMGetLastTurnParams>(); }
TEST(QCMGetLastTargetSearchParams, FetchesTheRecord) {
  ExpectFetches<QCM_TARGET_SEARCH_PARAMS, QCMGetLastTargetSearchParams>();
}
TEST(QCMGetLastTargetSearchResult, FetchesTheRecord) {
  ExpectFetches<QCM_TARGET_SEARCH_RESULT, QCMGetLastTargetSearchResult>();
}
TEST(QCMGetLastSavedImageParams, FetchesTheRecord) {
  ExpectFetches<QCM_SAVED_IMAGE_PARAMS, QCMGetLastSavedImageParams>();
}

// ---- QCMT_UpgradeToolsMode

TEST(QCMT_UpgradeToolsMode, SucceedsOnAnOpenService) {
  const Service service;
  EXPECT_EQ(QCMT_UpgradeToolsMode(service.handle), QCM_OK);
  EXPECT_EQ(QCMT_UpgradeToolsMode(service.handle), QCM_OK);
}

TEST(QCMT_UpgradeToolsMode, DoesNotKnowAClosedService) {
  World world;
  EXPECT_EQ(QCMT_UpgradeToolsMode(ClosedHandle()), QCM_NO_SERVICE);
}

}  // namespace
