// EX_PRS and its record.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "common/kernel/handles.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

class EX_PRS : public testing::Test {
 protected:
  EX_PRS() { service_.MakeFile("/Windows/tool.exe"); }
  /// Program and command line of the record; nothing while none is recorded.
  std::vector<std::u16string> Record() {
    QCM_EXECUTED_PROCESS_INFO record;
    std::fill_n(reinterpret_cast<unsigned char*>(&record), sizeof record, 0xCD);
    if (!service_.manager.records().Fetch(&record)) return {};
    return {reinterpret_cast<const char16_t*>(record.program), reinterpret_cast<const char16_t*>(record.command_line)};
  }
  ControllerService service_;
};

TEST_F(EX_PRS, StartsAProgramWithItsCommandLine) {
  EXPECT_EQ(service_.Answer("EX_PRS,PRM=-a b,PTH=\\\\Windows\\\\tool.exe"), "ok");
  EXPECT_EQ(service_.PlatformCalls({"CreateProcessW"}),
            Texts{"CreateProcessW(\\Windows\\tool.exe, -a b, null, null, 0, 0, null, null, null)"});
  EXPECT_EQ(Record(), (std::vector<std::u16string>{u"\\Windows\\tool.exe", u"-a b"}));
}

TEST_F(EX_PRS, StartsAProgramWithoutParameters) {
  EXPECT_EQ(service_.Answer("EX_PRS,PTH=\\\\Windows\\\\tool.exe"), "ok");
  EXPECT_EQ(Record(), (std::vector<std::u16string>{u"\\Windows\\tool.exe", u""}));
}

TEST_F(EX_PRS, LeavesSlashesInThePath) {
  service_.Answer("EX_PRS,PTH=/Windows/tool.exe");
  EXPECT_EQ(service_.PlatformCalls({"CreateProcessW"}).at(0).substr(0, 33), "CreateProcessW(/Windows/tool.exe,");
}

TEST_F(EX_PRS, FailsForAProgramThatDoesNotExistAndKeepsTheRecord) {
  EXPECT_EQ(service_.Answer("EX_PRS,PTH=\\\\none.exe"), "ER_FAL");
  EXPECT_TRUE(Record().empty());
  service_.Answer("EX_PRS,PTH=\\\\Windows\\\\tool.exe,PRM=1");
  EXPECT_EQ(service_.Answer("EX_PRS,PTH=\\\\none.exe,PRM=2"), "ER_FAL");
  EXPECT_EQ(Record().at(1), u"1");
}

TEST_F(EX_PRS, WantsItsPath) {
  EXPECT_EQ(service_.Answer("EX_PRS"), "ER_PRM");
  EXPECT_EQ(service_.Answer("EX_PRS,PRM=x"), "ER_PRM");
}

TEST_F(EX_PRS, CutsTextsThatAreTooLongForTheRecord) {
  const std::string line(300, 'x');
  service_.Answer("EX_PRS,PTH=\\\\Windows\\\\tool.exe,PRM=" + line);
  EXPECT_EQ(Record().at(1), std::u16string(259, u'x'));
}

TEST_F(EX_PRS, TellsTheWindows) {
  TestWindow window;
  service_.manager.notify_list().Register(window.handle(), kNotice);
  service_.Answer("EX_PRS,PTH=\\\\none.exe");
  service_.Answer("EX_PRS,PTH=\\\\Windows\\\\tool.exe");
  EXPECT_EQ(window.WaitForSeen(1).front(), (SeenMessage{kNotice, 2560, 0, false}));
}

TEST_F(EX_PRS, ClosesTheProgramsHandles) {
  const std::size_t handles = host::LibraryHandles();
  service_.Answer("EX_PRS,PTH=\\\\Windows\\\\tool.exe");
  EXPECT_EQ(host::LibraryHandles(), handles);
}

}  // namespace
}  // namespace qxtest
