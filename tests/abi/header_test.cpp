// Runs the C program's checks, and the same layout seen from C++.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <type_traits>

#include "abi/c_program.h"

namespace {

TEST(Header, GivesTheRecordsTheirSizesInC) { EXPECT_STREQ(CheckRecordSizes(), nullptr); }

TEST(Header, GivesTheFieldsTheirOffsetsInC) { EXPECT_STREQ(CheckRecordOffsets(), nullptr); }

TEST(Header, NamesTheTypesAndCodesInC) { EXPECT_STREQ(CheckTypesAndCodes(), nullptr); }

TEST(Header, GivesTheRecordsTheSameLayoutInCpp) {
  EXPECT_TRUE(std::is_standard_layout_v<QCM_MSR_PARAMS> && std::is_trivial_v<QCM_MSR_PARAMS>);
  EXPECT_TRUE(std::is_standard_layout_v<QCM_EXECUTED_PROCESS_INFO> && std::is_trivial_v<QCM_EXECUTED_PROCESS_INFO>);
  EXPECT_EQ(sizeof(QCM_EXECUTED_PROCESS_INFO), 1040u);
  EXPECT_EQ(offsetof(QCM_MSR_PARAMS, offset), 16u);
  EXPECT_EQ(sizeof(QCM_WCHAR), 2u);
}

TEST(Exports, AnswerHandleZeroFromAProgramInC) { EXPECT_STREQ(CheckHandleZero(), nullptr); }

TEST(QCMGetPortName, EmptiesTheBufferOfAProgramInC) { EXPECT_STREQ(CheckPortNameOfHandleZero(), nullptr); }

}  // namespace
