// OP_FIL, CL_FIL and SK_FIL; the numbers of open files.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "common/kernel/handles.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

const std::string kNoHandle = Status("ER_FNH");

class TenFiles : public testing::Test {
 protected:
  TenFiles() {
    for (int i = 0; i < 12; ++i) service_.MakeFile(Path(i), "0123456789");
  }
  static std::string Path(int number) { return "/f" + std::to_string(number); }
  void OpenTen() {
    for (int i = 0; i < 10; ++i) service_.Open(Path(i));
  }
  std::string Read(const std::string& number, int bytes) {
    return service_.Answer("RD_FIL,MOD=BIN,RBT=" + std::to_string(bytes) + ",HAN=" + number);
  }
  ControllerService service_;
};

using OP_FIL = TenFiles;
using CL_FIL = TenFiles;
using SK_FIL = TenFiles;

// ---- OP_FIL

TEST_F(OP_FIL, GivesTheNumbersInTheirOrder) {
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/f0"), "FIL,STS=SCS,HAN=1");
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/f1"), "FIL,STS=SCS,HAN=2");
}

TEST_F(OP_FIL, GivesAClosedNumberAgainOnlyAfterAllOthers) {
  service_.Open("/f0");
  service_.Open("/f1");
  service_.Answer("CL_FIL,HAN=1");
  for (int number = 3; number <= 99; ++number) {
    EXPECT_EQ(service_.Open("/f0"), std::to_string(number));
    service_.Answer("CL_FIL,HAN=" + std::to_string(number));
  }
  EXPECT_EQ(service_.Open("/f0"), "1");
  EXPECT_EQ(service_.Open("/f3"), "3");
}

TEST_F(OP_FIL, AsksForTheWholeFileForReadingAndWriting) {
  service_.Open("/f0");
  EXPECT_EQ(service_.PlatformCalls({"CreateFileW"}), Texts{"CreateFileW(\\f0, 3221225472, 0, null, 3, 128, null)"});
}

TEST_F(OP_FIL, WantsItsPath) { EXPECT_EQ(service_.Answer("OP_FIL"), "ER_PRM"); }

TEST_F(OP_FIL, TellsAMissingFileFromAMissingFolder) {
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/none"), Status("ER_FNE"));
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/none/a"), kFailed);
  EXPECT_EQ(service_.PlatformCalls({"CreateFileW"}), Texts{});
}

TEST_F(OP_FIL, OpensNoFolder) {
  service_.MakeFolder("/Jobs");
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/Jobs"), kFailed);
  EXPECT_EQ(service_.PlatformCalls({"CreateFileW"}), Texts{});
}

TEST_F(OP_FIL, OpensAFileOnce) {
  service_.Open("/f0");
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/F0"), kFailed);
}

TEST_F(OP_FIL, RefusesAnEleventhFileEvenWithoutAPath) {
  OpenTen();
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/f10"), kNoHandle);
  EXPECT_EQ(service_.Answer("OP_FIL"), kNoHandle);
  service_.Answer("CL_FIL,HAN=5");
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/f10"), "FIL,STS=SCS,HAN=11");
}

TEST_F(OP_FIL, TakesNoNumberWhenItFails) {
  service_.Answer("OP_FIL,PTH=/none");
  EXPECT_EQ(service_.Open("/f0"), "1");
}

TEST_F(OP_FIL, ReportsThePlatformsCodeThroughTheTable) {
  const Failing failing("CreateFileW", ERROR_TOO_MANY_OPEN_FILES);
  EXPECT_EQ(service_.Answer("OP_FIL,PTH=/f0"), kNoHandle);
}

TEST_F(OP_FIL, KeepsItsFilesApartFromThoseOfAnotherService) {
  MemoryLine other_line;
  qxcm::CommManager other{u"COM5", other_line.MakeLink()};
  service_.Open("/f0");
  EXPECT_EQ(other_line.Exchange("OP_FIL,PTH=/f1"), ReplyFrame("FIL,STS=SCS,HAN=1") + std::string(kAck));
  EXPECT_EQ(other_line.Exchange("OP_FIL,PTH=/f0"), ReplyFrame("FIL,STS=ER_FAL") + std::string(kAck));
}

TEST_F(OP_FIL, LeavesNothingOpenWhenTheServiceHasClosed) {
  const std::size_t handles = host::LibraryHandles();
  {
    MemoryLine other_line;
    qxcm::CommManager other{u"COM5", other_line.MakeLink()};
    other_line.Exchange("OP_FIL,PTH=/f0");
    other_line.Exchange("OP_FIL,PTH=/f1");
  }
  EXPECT_EQ(host::LibraryHandles(), handles);
  EXPECT_EQ(service_.Open("/f0"), "1");
}

// ---- CL_FIL

TEST_F(CL_FIL, ClosesTheFile) {
  service_.Open("/f0");
  EXPECT_EQ(service_.Answer("CL_FIL,HAN=1"), kDone);
  EXPECT_EQ(service_.Answer("CL_FIL,HAN=1"), kNoHandle);
  EXPECT_EQ(service_.Open("/f0"), "2");
}

TEST_F(CL_FIL, WantsItsNumber) { EXPECT_EQ(service_.Answer("CL_FIL"), "ER_PRM"); }

TEST_F(CL_FIL, KnowsNoOtherNumbers) {
  service_.Open("/f0");
  for (const char* number : {"0", "2", "99", "100", "257", "-1", "-255", "x", "65537", "99999999999"}) {
    EXPECT_EQ(service_.Answer(std::string("CL_FIL,HAN=") + number), kNoHandle) << number;
    EXPECT_EQ(service_.Answer(std::string("RD_FIL,HAN=") + number), kNoHandle) << number;
    EXPECT_EQ(service_.Answer(std::string("WR_FIL,VAL=x,HAN=") + number), kNoHandle) << number;
    EXPECT_EQ(service_.Answer(std::string("SK_FIL,POS=0,HAN=") + number), kNoHandle) << number;
  }
  EXPECT_EQ(service_.Answer("CL_FIL,HAN=1x"), kDone);
}

TEST_F(CL_FIL, FreesTheNumberEvenWhenThePlatformFails) {
  service_.Open("/f0");
  {
    const Failing failing("CloseHandle", ERROR_DISK_FULL);
    EXPECT_EQ(service_.Answer("CL_FIL,HAN=1"), Status("ER_FDF"));
  }
  EXPECT_EQ(service_.Answer("CL_FIL,HAN=1"), kNoHandle);
}

// ---- SK_FIL

TEST_F(SK_FIL, MovesFromTheStart) {
  service_.Open("/f0");
  EXPECT_EQ(service_.Answer("SK_FIL,HAN=1,POS=7"), kDone);
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=37");
  service_.Answer("SK_FIL,HAN=1,POS=2");
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=32");
}

TEST_F(SK_FIL, MovesFromHereWithASign) {
  service_.Open("/f0");
  service_.Answer("SK_FIL,HAN=1,POS=+5");
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=35");
  service_.Answer("SK_FIL,HAN=1,POS=+2");
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=38");
  service_.Answer("SK_FIL,HAN=1,POS=-3");
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=36");
}

TEST_F(SK_FIL, PassesTheDistanceAndTheMethodToThePlatform) {
  service_.Open("/f0");
  for (const char* position : {"10", "+10", "-3", "x", "99999999999"}) {
    service_.Answer(std::string("SK_FIL,HAN=1,POS=") + position);
  }
  service_.Answer("SK_FIL,HAN=1,POS");
  Texts endings;
  for (const std::string& call : service_.PlatformCalls({"SetFilePointer"}))
    endings.push_back(call.substr(call.find(", ")));
  EXPECT_EQ(endings, (Texts{", 10, null, 0)", ", 10, null, 1)", ", -3, null, 1)", ", 0, null, 0)",
                            ", 2147483647, null, 0)", ", 0, null, 0)"}));
}

TEST_F(SK_FIL, RefusesAPositionBeforeTheStartAndStays) {
  service_.Open("/f0");
  service_.Answer("SK_FIL,HAN=1,POS=4");
  EXPECT_EQ(service_.Answer("SK_FIL,HAN=1,POS=-5"), kFailed);
  EXPECT_EQ(Read("1", 1), "FIL,STS=SCS,VAL=34");
}

TEST_F(SK_FIL, GoesBehindTheEnd) {
  service_.Open("/f0");
  EXPECT_EQ(service_.Answer("SK_FIL,HAN=1,POS=12"), kDone);
  EXPECT_EQ(Read("1", 1), Status("EOF"));
  service_.Answer("WR_FIL,HAN=1,MOD=BIN,VAL=41");
  EXPECT_EQ(service_.BytesOf("/f0"), std::string("0123456789\0\0A", 13));
}

TEST_F(SK_FIL, WantsNumberAndPosition) {
  service_.Open("/f0");
  for (const char* command : {"SK_FIL", "SK_FIL,HAN=1", "SK_FIL,POS=1", "SK_FIL,HAN=99"}) {
    EXPECT_EQ(service_.Answer(command), "ER_PRM") << command;
  }
}

// ---- The lock

TEST_F(TenFiles, CommandsHoldTheTableUntilTheirReplyHasBeenSent) {
  service_.Open("/f0");
  std::string written;
  std::thread next;
  service_.Locked([&] {  // the reply waits for the manager lock
    service_.line.Send(CommandFrame("RD_FIL,HAN=1,MOD=BIN,RBT=1"));
    EXPECT_TRUE(WaitUntil([&] { return !service_.PlatformCalls({"ReadFile"}).empty(); }));
    next = std::thread([&] {
      qxcm::Guard guard(service_.manager.open_files().lock());
      written = service_.line.Take();
    });
  });
  next.join();
  EXPECT_EQ(written.substr(0, written.find('\r') + 1), ReplyFrame("FIL,STS=SCS,VAL=30"));
}

TEST_F(TenFiles, CommandsByPathDoNotWaitForTheTable) {
  qxcm::Guard guard(service_.manager.open_files().lock());
  EXPECT_EQ(service_.Answer("CR_FIL,PTH=/new"), kDone);
}

}  // namespace
}  // namespace qxtest
