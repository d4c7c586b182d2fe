// GT_FLS.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "common/kernel/handles.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

/// The part of an entry between a key and the next comma.
std::string FieldOf(const std::string& entry, const std::string& key) {
  const std::size_t at = entry.find("," + key + "=");
  if (at == std::string::npos) return "no " + key;
  const std::size_t begin = at + key.size() + 2;
  return entry.substr(begin, entry.find(',', begin) - begin);
}

TEST(GT_FLS, AnswersOneReplyAnEntryWithItsNumberAndTheirCount) {
  ControllerService service;
  for (const char* name : {"/Jobs/a.txt", "/Jobs/b.txt", "/Jobs/c.txt"}) service.MakeFile(name, "12345");
  const Texts answers = service.Answers("GT_FLS,PTH=/Jobs/*.*");
  ASSERT_EQ(answers.size(), 3u);
  const std::string names = "abc";
  for (std::size_t i = 0; i < answers.size(); ++i) {
    EXPECT_EQ(answers[i].substr(0, 41),
              "FLS,CNT=" + std::to_string(i + 1) + "/3,ATR=10,FNM=" + names[i] + ".txt,SIZ=5,DTE=20");
    EXPECT_EQ(FieldOf(answers[i], "DTE").size(), 8u);
    EXPECT_EQ(FieldOf(answers[i], "TIM").size(), 6u);
  }
}

TEST(GT_FLS, AnswersOneReplyWhenNothingMatches) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  for (const char* pattern : {"/Jobs/*.*", "/Jobs/none.txt", "/none/*", "/Jobs/*.txt"}) {
    EXPECT_EQ(service.Answers(std::string("GT_FLS,PTH=") + pattern), Texts{"FLS,CNT=0"}) << pattern;
  }
}

TEST(GT_FLS, HidesThePlatformsErrorCode) {
  ControllerService service;
  const Failing failing("FindFirstFileW", ERROR_WRITE_PROTECT);
  EXPECT_EQ(service.Answers("GT_FLS,PTH=/*"), Texts{"FLS,CNT=0"});
}

TEST(GT_FLS, EndsTheListWhereThePlatformFails) {
  ControllerService service;
  for (const char* name : {"/a", "/b", "/c"}) service.MakeFile(name);
  const Failing failing("FindNextFileW", ERROR_GEN_FAILURE, 2);
  EXPECT_EQ(service.Answers("GT_FLS,PTH=/*").size(), 2u);
}

TEST(GT_FLS, GivesThePatternToThePlatformAsItStands) {
  ControllerService service;
  service.Answers("GT_FLS,PTH=Jobs/*.t?t");
  service.Answers("GT_FLS,PTH");
  EXPECT_EQ(service.PlatformCalls({"FindFirstFileW"}).size(), 2u);
  EXPECT_EQ(service.PlatformCalls({"FindFirstFileW"})[0].substr(0, 26), "FindFirstFileW(Jobs\\*.t?t)");
}

TEST(GT_FLS, ShowsAFolderAndItsAttributesInOneByte) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  service.MakeFile("/plain");
  service.MakeFile("/locked");
  std::filesystem::permissions(service.Outside("/locked"), std::filesystem::perms::owner_read);
  const Texts answers = service.Answers("GT_FLS,PTH=/*");
  ASSERT_EQ(answers.size(), 3u);
  EXPECT_EQ(FieldOf(answers[0], "ATR").back(), '8');
  EXPECT_EQ(FieldOf(answers[0], "SIZ"), "0");
  EXPECT_EQ(FieldOf(answers[1], "ATR"), "11");
  EXPECT_EQ(FieldOf(answers[2], "ATR"), "10");
}

TEST(GT_FLS, ShowsTheLow32BitsOfASize) {
  ControllerService service;
  service.MakeFile("/big");
  std::filesystem::resize_file(service.Outside("/big"), 5ull * 1024 * 1024 * 1024);
  EXPECT_EQ(FieldOf(service.Answer("GT_FLS,PTH=/big"), "SIZ"), std::to_string(1024 * 1024 * 1024));
  std::filesystem::resize_file(service.Outside("/big"), 0xFFFFFFFFull);
  EXPECT_EQ(FieldOf(service.Answer("GT_FLS,PTH=/big"), "SIZ"), "4294967295");
}

TEST(GT_FLS, ShowsNamesInTheAnsiCodePage) {
  ControllerService service;
  service.MakeFile("/\u00E4\u20AC.txt");
  EXPECT_EQ(FieldOf(service.Answer("GT_FLS,PTH=/*.txt"), "FNM"), "\xE4\x80.txt");
}

TEST(GT_FLS, ShowsTheNameAndNotThePath) {
  ControllerService service;
  service.MakeFile("/Jobs/2024/Name.txt");
  EXPECT_EQ(FieldOf(service.Answer("GT_FLS,PTH=/jobs/2024/name.txt"), "FNM"), "Name.txt");
}

TEST(GT_FLS, LeavesNoSearchOpen) {
  ControllerService service;
  service.MakeFile("/a");
  const std::size_t handles = host::LibraryHandles();
  service.Answers("GT_FLS,PTH=/*");
  service.Answers("GT_FLS,PTH=/none");
  EXPECT_EQ(host::LibraryHandles(), handles);
}

TEST(GT_FLS, SendsTenThousandEntriesWhileTheControllerReads) {
  ControllerService service;
  constexpr int kFiles = 10000;
  service.MakeFolder("/Many");
  for (int i = 0; i < kFiles; ++i) service.MakeFile("/Many/f" + std::to_string(100000 + i));
  const Texts answers = service.Answers("GT_FLS,PTH=/Many/*");
  ASSERT_EQ(answers.size(), std::size_t{kFiles});
  EXPECT_EQ(answers.front().substr(0, 36), "FLS,CNT=1/10000,ATR=10,FNM=f100000,S");
  EXPECT_EQ(answers.back().substr(0, 40), "FLS,CNT=10000/10000,ATR=10,FNM=f109999,S");
}

}  // namespace
}  // namespace qxtest
