// MK_FDR, RM_FIL, RM_FDR, CR_FIL, CP_FIL and MV_FIL.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "common/files/file_root.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

const std::string kMissing = Status("ER_FNE");
const std::string kExists = Status("ER_FAE");

// ---- Every one of them

TEST(FileCommands, WantTheirPath) {
  ControllerService service;
  for (const char* command : {"MK_FDR", "RM_FIL", "RM_FDR", "CR_FIL", "GT_FLS", "CP_FIL", "MV_FIL", "CP_FIL,SPT=/a",
                              "CP_FIL,DPT=/a", "MV_FIL,SPT=/a", "MV_FIL,DPT=/a", "MK_FDR,pth=/a", "RM_FIL,SPT=/a"}) {
    service.ForgetPlatformCalls();
    EXPECT_EQ(service.Answer(command), "ER_PRM") << command;
    EXPECT_EQ(service.PlatformCalls({"CreateDirectoryW", "DeleteFileW", "CreateFileW", "CopyFileW", "MoveFileW"}),
              Texts{});
  }
}

TEST(FileCommands, IgnoreOtherKeys) { EXPECT_EQ(ControllerService().Answer("MK_FDR,SPT=/b,PTH=/a,XYZ=1,MOD"), kDone); }

TEST(FileCommands, GiveThePathToThePlatformWithBackslashes) {
  ControllerService service;
  service.MakeFolder("/Temp");
  service.Answer("MK_FDR,PTH=/Temp/x");
  EXPECT_EQ(service.PlatformCalls({"CreateDirectoryW"}), Texts{"CreateDirectoryW(\\Temp\\x, null)"});
}

TEST(FileCommands, ReportThePlatformsCodeThroughTheTable) {
  const Texts commands = {"MK_FDR,PTH=/new",   "RM_FIL,PTH=/file",           "RM_FDR,PTH=/folder",
                          "CR_FIL,PTH=/fresh", "CP_FIL,SPT=/file,DPT=/copy", "MV_FIL,SPT=/file,DPT=/moved"};
  const Texts calls = {"CreateDirectoryW", "DeleteFileW", "RemoveDirectoryW", "CreateFileW", "CopyFileW", "MoveFileW"};
  const std::vector<std::pair<std::uint32_t, std::string>> codes = {
      {19, "ER_FPT"}, {39, "ER_FDF"}, {112, "ER_FDF"}, {4, "ER_FNH"},   {6, "ER_FNH"},   {5, "ER_FAL"},
      {3, "ER_FAL"},  {2, "ER_FNE"},  {80, "ER_FAE"},  {183, "ER_FAE"}, {145, "ER_FNM"}, {38, "EOF"}};
  for (std::size_t i = 0; i < commands.size(); ++i) {
    for (const auto& [code, status] : codes) {
      ControllerService service;
      service.MakeFile("/file");
      service.MakeFolder("/folder");
      const Failing failing(calls[i], code);
      EXPECT_EQ(service.Answer(commands[i]), Status(status)) << commands[i] << " " << code;
    }
  }
}

// ---- MK_FDR

TEST(MK_FDR, MakesAFolder) {
  ControllerService service;
  EXPECT_EQ(service.Answer("MK_FDR,PTH=/Jobs"), kDone);
  EXPECT_TRUE(std::filesystem::is_directory(service.Outside("/Jobs")));
}

TEST(MK_FDR, RefusesOneThatExists) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  service.MakeFile("/file");
  EXPECT_EQ(service.Answer("MK_FDR,PTH=/jobs"), kExists);
  EXPECT_EQ(service.Answer("MK_FDR,PTH=/file"), kExists);
}

TEST(MK_FDR, DoesNotMakeTheFoldersOnTheWay) {
  ControllerService service;
  EXPECT_EQ(service.Answer("MK_FDR,PTH=/a/b"), kFailed);
  EXPECT_FALSE(service.Exists("/a"));
}

TEST(MK_FDR, RefusesAWildCard) { EXPECT_EQ(ControllerService().Answer("MK_FDR,PTH=/a*"), kFailed); }

TEST(MK_FDR, RefusesAnEmptyPath) { EXPECT_EQ(ControllerService().Answer("MK_FDR,PTH"), kFailed); }

// ---- RM_FIL

TEST(RM_FIL, DeletesAFile) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/A.TXT"), kDone);
  EXPECT_FALSE(service.Exists("/a.txt"));
}

TEST(RM_FIL, TellsAMissingFileFromAMissingFolder) {
  ControllerService service;
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/none.txt"), kMissing);
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/none/a.txt"), kFailed);
}

TEST(RM_FIL, LeavesAFolderAlone) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/Jobs"), kFailed);
  EXPECT_TRUE(service.Exists("/Jobs"));
  EXPECT_EQ(service.PlatformCalls({"DeleteFileW"}), Texts{});
}

TEST(RM_FIL, LeavesAnOpenFileAlone) {
  ControllerService service;
  service.MakeFile("/a.txt");
  const std::string number = service.Open("/a.txt");
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/a.txt"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
  service.Answer("CL_FIL,HAN=" + number);
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/a.txt"), kDone);
}

TEST(RM_FIL, LeavesAReadOnlyFileAlone) {
  ControllerService service;
  service.MakeFile("/a.txt");
  std::filesystem::permissions(service.Outside("/a.txt"), std::filesystem::perms::owner_read);
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/a.txt"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
}

TEST(RM_FIL, TakesNoWildCards) {
  ControllerService service;
  service.MakeFile("/a.txt");
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/*.*"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
}

// ---- RM_FDR

TEST(RM_FDR, RemovesAnEmptyFolder) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  EXPECT_EQ(service.Answer("RM_FDR,PTH=/Jobs"), kDone);
  EXPECT_FALSE(service.Exists("/Jobs"));
}

TEST(RM_FDR, LeavesAFolderThatHoldsSomething) {
  ControllerService service;
  service.MakeFile("/Jobs/a.txt");
  EXPECT_EQ(service.Answer("RM_FDR,PTH=/Jobs"), Status("ER_FNM"));
  EXPECT_TRUE(service.Exists("/Jobs/a.txt"));
}

TEST(RM_FDR, LeavesAFileAlone) {
  ControllerService service;
  service.MakeFile("/a.txt");
  EXPECT_EQ(service.Answer("RM_FDR,PTH=/a.txt"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
  EXPECT_EQ(service.PlatformCalls({"RemoveDirectoryW"}), Texts{});
}

TEST(RM_FDR, TellsAMissingFolderFromAMissingOneOnTheWay) {
  ControllerService service;
  EXPECT_EQ(service.Answer("RM_FDR,PTH=/none"), kMissing);
  EXPECT_EQ(service.Answer("RM_FDR,PTH=/none/b"), kFailed);
}

// ---- CR_FIL

TEST(CR_FIL, MakesAnEmptyFileAndKeepsItClosed) {
  ControllerService service;
  EXPECT_EQ(service.Answer("CR_FIL,PTH=/a.txt"), kDone);
  EXPECT_EQ(service.BytesOf("/a.txt"), "");
  EXPECT_EQ(service.Answer("RM_FIL,PTH=/a.txt"), kDone);
}

TEST(CR_FIL, AsksForAnExclusiveNewFile) {
  ControllerService service;
  service.Answer("CR_FIL,PTH=/a.txt");
  EXPECT_EQ(service.PlatformCalls({"CreateFileW"}), Texts{"CreateFileW(\\a.txt, 3221225472, 0, null, 1, 128, null)"});
}

TEST(CR_FIL, LeavesAnExistingFileUntouched) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  EXPECT_EQ(service.Answer("CR_FIL,PTH=/A.txt"), kExists);
  EXPECT_EQ(service.BytesOf("/a.txt"), "text");
}

TEST(CR_FIL, WantsTheFolderOnTheWay) { EXPECT_EQ(ControllerService().Answer("CR_FIL,PTH=/none/a"), kFailed); }

TEST(CR_FIL, RefusesANameThePlatformDoesNotAllow) { EXPECT_EQ(ControllerService().Answer("CR_FIL,PTH=/a?b"), kFailed); }

// ---- CP_FIL

TEST(CP_FIL, CopiesAFile) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  EXPECT_EQ(service.Answer("CP_FIL,DPT=/b.txt,SPT=/a.txt"), kDone);
  EXPECT_EQ(service.BytesOf("/b.txt"), "text");
  EXPECT_EQ(service.BytesOf("/a.txt"), "text");
}

TEST(CP_FIL, NeverOverwrites) {
  ControllerService service;
  service.MakeFile("/a.txt", "new");
  service.MakeFile("/b.txt", "old");
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/a.txt,DPT=/b.txt"), kExists);
  EXPECT_EQ(service.BytesOf("/b.txt"), "old");
  EXPECT_EQ(service.PlatformCalls({"CopyFileW"}), Texts{"CopyFileW(\\a.txt, \\b.txt, 1)"});
}

TEST(CP_FIL, TellsAMissingSourceFromAMissingFolder) {
  ControllerService service;
  service.MakeFile("/a.txt");
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/none,DPT=/b"), kMissing);
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/a.txt,DPT=/none/b"), kFailed);
}

TEST(CP_FIL, CopiesNoFolder) {
  ControllerService service;
  service.MakeFolder("/Jobs");
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/Jobs,DPT=/Copy"), kFailed);
  EXPECT_FALSE(service.Exists("/Copy"));
}

TEST(CP_FIL, CopiesNoOpenFile) {
  ControllerService service;
  service.MakeFile("/a.txt");
  service.Open("/a.txt");
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/a.txt,DPT=/b.txt"), kFailed);
  EXPECT_FALSE(service.Exists("/b.txt"));
}

TEST(CP_FIL, TellsThatTheDiskIsFullAndLeavesNoPart) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  host::SetFreeFileSpace(3);
  EXPECT_EQ(service.Answer("CP_FIL,SPT=/a.txt,DPT=/b.txt"), Status("ER_FDF"));
  EXPECT_FALSE(service.Exists("/b.txt"));
}

// ---- A write-protected disk

TEST(FileCommands, TellThatTheDiskIsWriteProtected) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  service.MakeFolder("/Jobs");
  std::filesystem::permissions(service.root(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
  for (const char* command : {"MK_FDR,PTH=/b", "RM_FIL,PTH=/a.txt", "RM_FDR,PTH=/Jobs", "CR_FIL,PTH=/b",
                              "CP_FIL,SPT=/a.txt,DPT=/b", "MV_FIL,SPT=/a.txt,DPT=/b", "OP_FIL,PTH=/a.txt"}) {
    EXPECT_EQ(service.Answer(command), Status("ER_FPT")) << command;
  }
  std::filesystem::permissions(service.root(), std::filesystem::perms::owner_all);
  EXPECT_EQ(service.BytesOf("/a.txt"), "text");
}

// ---- MV_FIL

TEST(MV_FIL, MovesAFile) {
  ControllerService service;
  service.MakeFile("/a.txt", "text");
  service.MakeFolder("/Jobs");
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/a.txt,DPT=/Jobs/b.txt"), kDone);
  EXPECT_FALSE(service.Exists("/a.txt"));
  EXPECT_EQ(service.BytesOf("/Jobs/b.txt"), "text");
}

TEST(MV_FIL, MovesAFolderWithAllThatIsInIt) {
  ControllerService service;
  service.MakeFile("/Jobs/a.txt", "text");
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/Jobs,DPT=/Old"), kDone);
  EXPECT_EQ(service.BytesOf("/Old/a.txt"), "text");
}

TEST(MV_FIL, NeverOverwrites) {
  ControllerService service;
  service.MakeFile("/a.txt", "new");
  service.MakeFile("/b.txt", "old");
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/a.txt,DPT=/b.txt"), kExists);
  EXPECT_EQ(service.BytesOf("/b.txt"), "old");
  EXPECT_EQ(service.BytesOf("/a.txt"), "new");
}

TEST(MV_FIL, TellsAMissingSourceFromAMissingFolder) {
  ControllerService service;
  service.MakeFile("/a.txt");
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/none,DPT=/b"), kMissing);
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/a.txt,DPT=/none/b"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
}

TEST(MV_FIL, LeavesAnOpenFileAlone) {
  ControllerService service;
  service.MakeFile("/a.txt");
  service.Open("/a.txt");
  EXPECT_EQ(service.Answer("MV_FIL,SPT=/a.txt,DPT=/b.txt"), kFailed);
  EXPECT_TRUE(service.Exists("/a.txt"));
}

}  // namespace
}  // namespace qxtest
