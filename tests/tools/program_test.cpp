// The program qxsim as a whole: how it comes up, what it leaves behind, and what it refuses.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/controller.h"
#include "support/qxsim_process.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

using wire::Controller;
using wire::kAck;
using wire::kEnq;

namespace fs = std::filesystem;

std::size_t Entries(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

Outcome RunQxsim(const TemporaryFolder& folder, std::vector<std::string> options) {
  options.insert(options.begin(), QxsimProgram());
  return RunToEnd(options, folder.path());
}

std::string Content(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

TEST(QxsimProgramTest, SaysInOneLineWhereItIs) {
  QxsimProcess qxsim;
  EXPECT_EQ(qxsim.ready_line(), "qxsim ready port=" + qxsim.folder() / "line" + " http=" + qxsim.url());
  EXPECT_EQ(qxsim.url().rfind("http://127.0.0.1:", 0), 0u);
  EXPECT_EQ(qxsim.http().Get("/api/v1/state").status, 200);
  EXPECT_EQ(qxsim.Stop(), 0);
  EXPECT_EQ(qxsim.process().ReadAll(std::chrono::seconds(1)), "");
  EXPECT_EQ(qxsim.process().ErrorText(), "");
}

TEST(QxsimProgramTest, AnswersAControllerThatOpensTheLink) {
  QxsimProcess qxsim;
  Controller controller(qxsim.port());
  EXPECT_TRUE(controller.Command("GT_OMD,ANG").acknowledged);
  EXPECT_EQ(qxsim.Stop(), 0);
}

TEST(QxsimProgramTest, TakesARelativeLinkAndSaysItsAbsolutePath) {
  TemporaryFolder folder;
  Process process({QxsimProgram(), "--ephemeral", "--http", "off"}, folder.path(), {"TMPDIR=" + folder.path()});
  EXPECT_EQ(process.ReadLine(std::chrono::seconds(20)), "qxsim ready port=" + folder / "qx-com5" + " http=off");
  process.Signal(SIGTERM);
  EXPECT_EQ(process.Wait(std::chrono::seconds(20)), 0);
}

TEST(QxsimProgramTest, AHangUpEndsItLikeTheOtherSignals) {
  QxsimProcess qxsim;
  qxsim.process().Signal(SIGHUP);
  EXPECT_EQ(qxsim.process().Wait(std::chrono::seconds(20)), 0);
  EXPECT_EQ(Entries(qxsim.folder().path()), 0u);
}

TEST(QxsimProgramTest, EphemeralLeavesNothingBehind) {
  TemporaryFolder temporary;
  TemporaryFolder work;
  Process process({QxsimProgram(), "--ephemeral", "--http", "off"}, work.path(), {"TMPDIR=" + temporary.path()});
  ASSERT_TRUE(process.ReadLine(std::chrono::seconds(20)));
  EXPECT_EQ(Entries(temporary.path()), 1u);
  EXPECT_EQ(Entries(work.path()), 2u);
  process.Signal(SIGINT);
  EXPECT_EQ(process.Wait(std::chrono::seconds(20)), 0);
  EXPECT_EQ(Entries(temporary.path()), 0u);
  EXPECT_EQ(Entries(work.path()), 0u);
}

TEST(QxsimProgramTest, EphemeralLeavesNothingBehindWhenItCannotStart) {
  TemporaryFolder temporary;
  TemporaryFolder work;
  std::ofstream(work / "qx-com5") << "kept";
  Process process({QxsimProgram(), "--ephemeral", "--http", "off"}, work.path(), {"TMPDIR=" + temporary.path()});
  EXPECT_EQ(process.Wait(std::chrono::seconds(20)), 3);
  EXPECT_EQ(Entries(temporary.path()), 0u);
  EXPECT_EQ(Entries(work.path()), 1u);
}

TEST(QxsimProgramTest, KeepsItsHomeWithTheInstrumentsFilesInIt) {
  QxsimProcess qxsim({}, false);
  EXPECT_TRUE(fs::is_directory(qxsim.folder() / "home/files"));
  EXPECT_EQ(qxsim.Stop(), 0);
  EXPECT_TRUE(fs::is_directory(qxsim.folder() / "home/files"));
}

TEST(QxsimProgramTest, FindsTheUsersHomeWhenNoneIsNamed) {
  TemporaryFolder data;
  Process process({QxsimProgram(), "--http", "off"}, data.path(), {"XDG_DATA_HOME=" + data.path()});
  ASSERT_TRUE(process.ReadLine(std::chrono::seconds(20)));
  EXPECT_TRUE(fs::is_directory(data / "qxsim/files"));
}

TEST(QxsimProgramTest, RefusesAHomeInUse) {
  QxsimProcess first({}, false);
  const Outcome second = RunQxsim(first.folder(), {"--home", "home", "--http", "off", "--link", "other"});
  EXPECT_EQ(second.status, 3);
  EXPECT_NE(second.errors.find("in use"), std::string::npos) << second.errors;
  EXPECT_FALSE(fs::exists(first.folder() / "other"));
}

TEST(QxsimProgramTest, TakesAHomeOverAfterItsUserWasKilled) {
  TemporaryFolder folder;
  const std::vector<std::string> arguments = {QxsimProgram(), "--home", "home", "--http", "off"};
  Process killed(arguments, folder.path());
  ASSERT_TRUE(killed.ReadLine(std::chrono::seconds(20)));
  killed.Signal(SIGKILL);
  killed.Wait(std::chrono::seconds(20));
  Process next(arguments, folder.path());
  EXPECT_TRUE(next.ReadLine(std::chrono::seconds(20))) << next.ErrorText();
}

TEST(QxsimProgramTest, RefusesAHomeThatCannotBeMade) {
  TemporaryFolder folder;
  std::ofstream(folder / "file") << "kept";
  const Outcome outcome = RunQxsim(folder, {"--home", "file/home", "--http", "off"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
}

TEST(QxsimProgramTest, ReplacesAnOldLinkButNoOtherFile) {
  TemporaryFolder folder;
  fs::create_symlink("/nowhere", folder / "old");
  Process process({QxsimProgram(), "--ephemeral", "--http", "off", "--link", "old"}, folder.path(),
                  {"TMPDIR=" + folder.path()});
  ASSERT_TRUE(process.ReadLine(std::chrono::seconds(20)));
  EXPECT_NE(fs::read_symlink(folder / "old"), "/nowhere");
  std::ofstream(folder / "file") << "kept";
  EXPECT_EQ(RunQxsim(folder, {"--ephemeral", "--http", "off", "--link", "file"}).status, 3);
  EXPECT_EQ(Content(folder / "file"), "kept");
}

TEST(QxsimProgramTest, RefusesAFileInTheSecondLinksPlaceAndTakesTheFirstBack) {
  TemporaryFolder folder;
  std::ofstream(folder / "line-2") << "kept";
  EXPECT_EQ(RunQxsim(folder, {"--ephemeral", "--http", "off", "--link", "line"}).status, 3);
  EXPECT_EQ(Entries(folder.path()), 1u);
}

TEST(QxsimProgramTest, RefusesAnAddressInUse) {
  QxsimProcess first;
  const std::string address = first.url().substr(7);
  const Outcome second = RunQxsim(first.folder(), {"--ephemeral", "--http", address, "--link", "other"});
  EXPECT_EQ(second.status, 3);
  EXPECT_NE(second.errors.find(address), std::string::npos) << second.errors;
  EXPECT_FALSE(fs::is_symlink(first.folder() / "other"));
}

TEST(QxsimProgramTest, RefusesADeviceThatIsNotThere) {
  TemporaryFolder folder;
  const Outcome outcome = RunQxsim(folder, {"--ephemeral", "--http", "off", "--device", "/dev/no-such-line"});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_NE(outcome.errors.find("/dev/no-such-line"), std::string::npos) << outcome.errors;
}

TEST(QxsimProgramTest, UsesASerialDeviceInPlaceOfAPty) {
  const int controller_end = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(controller_end, 0);
  ASSERT_EQ(grantpt(controller_end) + unlockpt(controller_end), 0);
  const std::string device = ptsname(controller_end);
  QxsimProcess qxsim({"--device", device});
  EXPECT_EQ(qxsim.port(), device);
  const std::string enq(1, kEnq);
  ASSERT_EQ(write(controller_end, enq.data(), 1), 1);
  char answer = 0;
  EXPECT_EQ(read(controller_end, &answer, 1), 1);
  EXPECT_EQ(answer, kAck);
  EXPECT_EQ(qxsim.Stop(), 0);
  close(controller_end);
}

TEST(QxsimProgramTest, TracesFramesCallsAndKeysToAFile) {
  QxsimProcess qxsim({"--trace", "trace.txt"});
  EXPECT_TRUE(Controller(qxsim.port()).Command("GT_OMD,KEY").acknowledged);
  EXPECT_EQ(qxsim.Stop(), 0);
  const std::string trace = Content(qxsim.folder() / "trace.txt");
  EXPECT_NE(trace.find(" COM5: in  command GT_OMD,KEY\n"), std::string::npos) << trace;
  EXPECT_NE(trace.find(" COM5: out reply OMD,KEY=0\n"), std::string::npos) << trace;
  EXPECT_NE(trace.find(" call    QxSystem 63() = 0\n"), std::string::npos) << trace;
}

TEST(QxsimProgramTest, RefusesATraceFileThatCannotBeWritten) {
  TemporaryFolder folder;
  EXPECT_EQ(RunQxsim(folder, {"--ephemeral", "--http", "off", "--trace", "no/such/folder"}).status, 3);
  EXPECT_EQ(Entries(folder.path()), 0u);
}

TEST(QxsimProgramTest, EndsWhileSomeoneListensToTheTraffic) {
  QxsimProcess qxsim;
  HttpClient listener(qxsim.url());
  ASSERT_EQ(listener.Listen("/api/v1/traffic").status, 200);
  EXPECT_EQ(qxsim.Stop(), 0);
  EXPECT_TRUE(listener.WaitForClose(std::chrono::seconds(10)));
}

TEST(QxsimProgramTest, EndsWhileARequestAndTheLibraryWaitForAMutexHeldByAnotherProcess) {
  QxsimProcess qxsim;
  const nlohmann::json key_mutex = {{"name", "KORAX-HALVERN.RZM.CommKeyDataMtx"}, {"held", true}};
  qxsim.http().Ask("POST", "/api/v1/service", {{"call", "QCMCloseComm"}});
  qxsim.http().Ask("POST", "/api/v1/keys", {{"code", 1}});
  qxsim.http().Ask("POST", "/api/v1/mutexes", key_mutex);
  qxsim.http().Ask("POST", "/api/v1/service", {{"call", "QCMOpenComm"}, {"args", {{"port", "COM5:"}}}});
  HttpClient waiting(qxsim.url());
  waiting.SendRaw("POST /api/v1/keys HTTP/1.1\r\nHost: localhost\r\nContent-Length: 10\r\n\r\n{\"code\":2}");
  EXPECT_EQ(qxsim.http().Get("/api/v1/state").status, 200);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(qxsim.Stop(), 0);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace qxtest
