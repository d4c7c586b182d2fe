/* The library as a C program of 1990 sees it: the header compiles, the records have their layout, every call links. */
#include "abi/c_program.h"

#include <QXCommMgr.h>
#include <stddef.h>
#include <string.h>

#define EXPECT(condition)                \
  do {                                   \
    if (!(condition)) return #condition; \
  } while (0)

const char* CheckRecordSizes(void) {
  EXPECT(sizeof(QCM_MSR_PARAMS) == 24);
  EXPECT(sizeof(QCM_EXECUTED_PROCESS_INFO) == 1040);
  EXPECT(sizeof(QCM_TURN_PARAMS) == 48);
  EXPECT(sizeof(QCM_TARGET_SEARCH_PARAMS) == 40);
  EXPECT(sizeof(QCM_TARGET_SEARCH_RESULT) == 36);
  EXPECT(sizeof(QCM_SAVED_IMAGE_PARAMS) == 532);
  return 0;
}

const char* CheckRecordOffsets(void) {
  EXPECT(offsetof(QCM_MSR_PARAMS, mode) == 0);
  EXPECT(offsetof(QCM_MSR_PARAMS, target) == 4);
  EXPECT(offsetof(QCM_MSR_PARAMS, single_shot) == 8);
  EXPECT(offsetof(QCM_MSR_PARAMS, reserved) == 12);
  EXPECT(offsetof(QCM_MSR_PARAMS, offset) == 16);
  EXPECT(offsetof(QCM_EXECUTED_PROCESS_INFO, command_line) == 0);
  EXPECT(offsetof(QCM_EXECUTED_PROCESS_INFO, program) == 520);
  return 0;
}

const char* CheckTypesAndCodes(void) {
  EXPECT(sizeof(QCM_WCHAR) == 2);
  EXPECT(sizeof(QCM_HANDLE) == 4);
  EXPECT(sizeof(QCM_UINT32) == 4);
  EXPECT(sizeof(QCM_INT32) == 4);
  EXPECT((QCM_INT32)-1 < 0);
  EXPECT((QCM_UINT32)-1 > 0);
  EXPECT(QCM_OK == 0 && QCM_BAD_ARGUMENT == -1 && QCM_PORT_FAILED == -12);
  EXPECT(QCM_NOTHING_RECORDED == -13 && QCM_NO_SERVICE == -14);
  EXPECT(QCM_NOTIFY_DISTANCE_REQUEST == 256 && QCM_NOTIFY_HORIZONTAL_ANGLE_SET == 513);
  EXPECT(QCM_NOTIFY_PARAMETERS_CHANGED == 1025 && QCM_NOTIFY_CONSTANTS_CHANGED == 1281);
  EXPECT(QCM_NOTIFY_EQUIPMENT_CHANGED == 1537 && QCM_NOTIFY_TIME_ZONE_CHANGED == 1793);
  EXPECT(QCM_NOTIFY_CLOCK_SET == 1794 && QCM_NOTIFY_REGISTRY_WRITTEN == 2305);
  EXPECT(QCM_NOTIFY_PROCESS_STARTED == 2560 && QCM_NOTIFY_FOCUS == 3584);
  return 0;
}

const char* CheckHandleZero(void) {
  QCM_MSR_PARAMS measurement;
  QCM_EXECUTED_PROCESS_INFO process;
  QCM_TURN_PARAMS turn;
  QCM_TARGET_SEARCH_PARAMS search;
  QCM_TARGET_SEARCH_RESULT result;
  QCM_SAVED_IMAGE_PARAMS image;
  EXPECT(QCMOpenComm(0) == 0);
  EXPECT(QCMCloseComm(0) == QCM_NO_SERVICE);
  EXPECT(QCMSuspendComm(0) == QCM_NO_SERVICE);
  EXPECT(QCMResumeComm(0) == QCM_NO_SERVICE);
  EXPECT(QCMRegisterNotifyWindow(0, 0, 0x8000) == QCM_NO_SERVICE);
  EXPECT(QCMUnregisterNotifyWindow(0, 0) == QCM_NO_SERVICE);
  EXPECT(QCMGetPortName(0, 0, 0) == QCM_NO_SERVICE);
  EXPECT(QCMSetAngleRoundParams(0, 1.0) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastMsrParams(0, &measurement) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastExecutedProcessInfo(0, &process) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastTurnParams(0, &turn) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastTargetSearchParams(0, &search) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastSavedImageParams(0, &image) == QCM_NO_SERVICE);
  EXPECT(QCMGetLastTargetSearchResult(0, &result) == QCM_NO_SERVICE);
  EXPECT(QCMT_UpgradeToolsMode(0) == QCM_NO_SERVICE);
  return 0;
}

const char* CheckPortNameOfHandleZero(void) {
  QCM_WCHAR buffer[4];
  memset(buffer, 0x5A, sizeof buffer);
  EXPECT(QCMGetPortName(0, buffer, sizeof buffer) == QCM_NO_SERVICE);
  EXPECT(buffer[0] == 0);
  EXPECT(buffer[1] == 0x5A5A);
  return 0;
}
