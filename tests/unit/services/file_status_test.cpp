// Status texts, status replies and paths from the wire.
#include "commands/services/file_status.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "protocol/command_processor.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using qxcm::FileStatus;
using qxcm::ToDevicePath;

const std::map<DWORD, std::string> kStatuses = {{0, "SCS"},     {2, "ER_FNE"},   {4, "ER_FNH"},  {6, "ER_FNH"},
                                                {19, "ER_FPT"}, {38, "EOF"},     {39, "ER_FDF"}, {112, "ER_FDF"},
                                                {80, "ER_FAE"}, {183, "ER_FAE"}, {145, "ER_FNM"}};

TEST(FileStatus, HasATextForEachOfElevenCodesAndOneForAllOthers) {
  for (DWORD code = 0; code < 20000; ++code) {
    const auto known = kStatuses.find(code);
    EXPECT_EQ(FileStatus(code), known == kStatuses.end() ? "ER_FAL" : known->second) << code;
  }
  for (const DWORD code : {0x80000000u, 0xFFFFFFFFu, 0x80070002u}) EXPECT_EQ(FileStatus(code), "ER_FAL");
}

TEST(FileStatus, OfAMissingFolderOnTheWayIsAFailure) { EXPECT_EQ(FileStatus(ERROR_PATH_NOT_FOUND), "ER_FAL"); }

TEST(FileStatusReply, IsTheStatusThenTheTail) {
  ControllerService service;
  qxcm::FileStatusReply(service.manager.processor(), 0, ",HAN=3");
  qxcm::FileStatusReply(service.manager.processor(), 2);
  EXPECT_EQ(service.line.Take(), ReplyFrame("FIL,STS=SCS,HAN=3") + ReplyFrame("FIL,STS=ER_FNE"));
}

TEST(FileStatusReply, BeginsWithAnotherHeadWhereOneIsGiven) {
  ControllerService service;
  qxcm::FileStatusReply(service.manager.processor(), 112, ",X=1", "ABC,D=1");
  EXPECT_EQ(service.line.Take(), ReplyFrame("ABC,D=1,STS=ER_FDF,X=1"));
}

TEST(FileStatusReply, IsDroppedWhileTheServiceIsSuspended) {
  EXPECT_EQ(ControllerService().WrittenOfSuspended("RM_FIL,PTH=/none"), "");
}

TEST(ToDevicePath, TurnsEverySlash) {
  EXPECT_EQ(ToDevicePath("/Temp/x"), u"\\Temp\\x");
  EXPECT_EQ(ToDevicePath("//a\\/b/"), u"\\\\a\\\\b\\");
  EXPECT_EQ(ToDevicePath("a*.b?"), u"a*.b?");
  EXPECT_EQ(ToDevicePath("/.././ "), u"\\..\\.\\ ");
}

TEST(ToDevicePath, ReadsTheAnsiCodePage) { EXPECT_EQ(ToDevicePath("/\xE4\x80"), u"\\\u00E4\u20AC"); }

TEST(ToDevicePath, OfAnEmptyTextIsEmpty) { EXPECT_EQ(ToDevicePath(""), u""); }

TEST(ToDevicePath, EndsAtAZeroByte) { EXPECT_EQ(ToDevicePath(std::string_view("/a\0/b", 5)), u"\\a"); }

TEST(FileCommands, FailWithoutAReplyWhenTheirTextCannotBeConverted) {
  ControllerService service;
  const Failing failing("MultiByteToWideChar", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(service.Answer("MK_FDR,PTH=/a"), "ER_FAL");
  EXPECT_FALSE(service.Exists("/a"));
}

}  // namespace
}  // namespace qxtest
