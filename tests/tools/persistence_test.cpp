// What the instrument keeps: over restarts, over kills at any moment, and when it cannot be kept.
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

#include "common/registry/registry.h"
#include "instrument/registry_json.h"
#include "instrument/registry_section.h"
#include "qxsim/persistent_state.h"
#include "qxsim/start_error.h"
#include "support/qxsim_process.h"
#include "tools/kept_home.h"

namespace qxtest {
namespace {

namespace fs = std::filesystem;

using host::Registry;
using host::RegistryContent;
using qxsim::PersistentState;

const Json kPatch = Json::parse(R"({"registry": {"HKLM/Software/X": {"Level": {"type": "INT", "value": 3}},
                                    "HKLM/Time Zones/Tokyo Standard Time": null}})");

LONG Store(const WCHAR* name, std::uint32_t number) {
  HKEY key = nullptr;
  const LONG opened = RegCreateKeyExW(HKEY_LOCAL_MACHINE, TEXT("Software\\QXTest"), 0, nullptr, 0, KEY_ALL_ACCESS,
                                      nullptr, &key, nullptr);
  if (opened != 0) return opened;
  const LONG error = RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
  RegCloseKey(key);
  return error;
}

TEST_F(PersistenceTest, AFreshHomeHoldsTheDefaults) {
  EXPECT_EQ(Kept()["registry"], State()["registry"]);
  EXPECT_EQ(Kept()["registry"].size(), 75u);
}

TEST_F(PersistenceTest, ChangesFromEverySideSurviveARestart) {
  Ask("PATCH", "/state", kPatch);
  EXPECT_EQ(Store(TEXT("Count"), 7), 0);
  const Json before = State()["registry"];
  EXPECT_EQ(Kept()["registry"], before);
  Restart();
  EXPECT_EQ(State()["registry"], before);
  EXPECT_EQ(before["HKLM/Software/X"]["Level"]["value"], 3);
  EXPECT_EQ(before["HKLM/Software/QXTest"]["Count"]["value"], 7);
  EXPECT_FALSE(before.contains("HKLM/Time Zones/Tokyo Standard Time"));
}

TEST_F(PersistenceTest, SurvivesAKillOfTheWholeProgram) {
  simulator_.reset();
  const std::vector<std::string> arguments = {QxsimProgram(), "--home", options_.home,   "--http",
                                              "127.0.0.1:0",  "--link", folder_ / "line"};
  Process killed(arguments, folder_.path());
  const std::string ready = killed.ReadLine(std::chrono::seconds(20)).value_or("");
  HttpClient(ready.substr(ready.find("http://"))).Ask("PATCH", "/api/v1/state", kPatch);
  killed.Signal(SIGKILL);
  killed.Wait(std::chrono::seconds(20));
  Start();
  EXPECT_EQ(State()["registry"]["HKLM/Software/X"]["Level"]["value"], 3);
}

TEST_F(PersistenceTest, ResetIsKeptToo) {
  Ask("PATCH", "/state", kPatch);
  const Json state = Ask("POST", "/reset");
  EXPECT_EQ(state["registry"].size(), 75u);
  EXPECT_EQ(Kept()["registry"], state["registry"]);
}

TEST_F(PersistenceTest, TheFileIsWrittenOnlyWhenSomethingChanges) {
  Ask("PATCH", "/state", kPatch);
  fs::last_write_time(File(), fs::file_time_type());
  Ask("PATCH", "/state", kPatch);
  Ask("PATCH", "/state", {{"ports", {{"shared", true}}}});
  Restart();
  EXPECT_EQ(fs::last_write_time(File()), fs::file_time_type());
  EXPECT_EQ(Store(TEXT("Count"), 7), 0);
  EXPECT_NE(fs::last_write_time(File()), fs::file_time_type());
}

TEST_F(PersistenceTest, ALeftoverOfAKilledRunIsRemoved) {
  const std::size_t entries = Entries();
  simulator_.reset();
  Fill(File().string() + ".new", "{\"half");
  Start();
  EXPECT_EQ(Entries(), entries);
}

TEST_F(PersistenceTest, AnEphemeralHomeKeepsItsStateWhileItLasts) {
  simulator_.reset();
  options_.ephemeral = true;
  Start();
  EXPECT_EQ(Store(TEXT("Count"), 7), 0);
  EXPECT_NE(Content(simulator_->home().path() / "state.json").find("\"Count\""), std::string::npos);
}

TEST_F(PersistenceTest, ADamagedOrForeignFileStopsTheStartAndStaysAsItIs) {
  simulator_.reset();
  const std::string head = R"({"format": "qxsim state 1", "registry": )";
  const std::string bad[] = {"",
                             "{",
                             "[]",
                             "{}",
                             "\xFF",
                             std::string(100000, '['),
                             R"({"format": "qxsim state 2", "registry": {}})",
                             R"({"format": 1})",
                             head + "{}, \"strange\": {}}",
                             head + "[]}",
                             head + "{\"HKLM/A\": {\"x\": {\"type\": \"INT\"}}}}",
                             head + "{\"HKXX/A\": {}}}"};
  for (const std::string& text : bad) {
    Fill(File(), text);
    EXPECT_THROW(Start(), qxsim::StartError) << text.substr(0, 80);
    EXPECT_EQ(Content(File()), text);
  }
}

TEST_F(PersistenceTest, ADamagedFileIsExitStatus3AndOneClearLine) {
  simulator_.reset();
  Fill(File(), "{\"format\": ");
  const Outcome outcome = RunToEnd({QxsimProgram(), "--home", options_.home, "--http", "off"}, folder_.path());
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  EXPECT_NE(outcome.errors.find(File().string()), std::string::npos) << outcome.errors;
  EXPECT_EQ(Content(File()), "{\"format\": ");
}

TEST_F(PersistenceTest, AFileThatCannotBeReadStopsTheStart) {
  simulator_.reset();
  fs::remove(File());
  fs::create_directory(File());
  EXPECT_THROW(Start(), qxsim::StartError);
}

TEST_F(PersistenceTest, AHomeThatTakesNoFileRefusesTheChangeAndSaysSo) {
  Ask("PATCH", "/state", kPatch);
  const std::string before = Content(File());
  const Json registry = State()["registry"];
  fs::create_directories(File().string() + ".new/in the way");
  EXPECT_EQ(Store(TEXT("Count"), 7), static_cast<LONG>(ERROR_REGISTRY_IO_FAILED));
  EXPECT_EQ(Call("PATCH", "/state", {{"registry", {{"HKLM/Y", Json::object()}}}}).status, 500);
  EXPECT_EQ(State()["registry"], registry);
  EXPECT_EQ(Content(File()), before);
  fs::remove_all(File().string() + ".new");
  EXPECT_EQ(Store(TEXT("Count"), 7), 0);
}

TEST_F(PersistenceTest, ChangesFromTheWireAndFromTheApiAtOnceAreAllKept) {
  constexpr std::uint32_t kRounds = 100;
  const auto store = [](const WCHAR* name) {
    for (std::uint32_t round = 1; round <= kRounds; ++round) EXPECT_EQ(Store(name, round), 0);
  };
  std::thread first(store, TEXT("first"));
  std::thread second(store, TEXT("second"));
  std::thread looking([this] {
    for (std::uint32_t round = 1; round <= kRounds; ++round) State();
  });
  for (std::uint32_t round = 1; round <= kRounds; ++round) {
    Ask("PATCH", "/state", {{"registry", {{"HKCU/A", {{"third", {{"type", "INT"}, {"value", round}}}}}}}});
  }
  for (std::thread* thread : {&first, &second, &looking}) thread->join();
  const Json kept = Kept()["registry"];
  EXPECT_EQ(kept, State()["registry"]);
  EXPECT_EQ(kept["HKLM/Software/QXTest"]["first"]["value"], kRounds);
  EXPECT_EQ(kept["HKLM/Software/QXTest"]["second"]["value"], kRounds);
  EXPECT_EQ(kept["HKCU/A"]["third"]["value"], kRounds);
}

/// A registry kept in a file of its own, without a simulator around it.
class KeptRegistry {
 public:
  explicit KeptRegistry(const std::string& file) : persistent_(file) {
    persistent_.Add(section_);
    persistent_.Begin();
    Registry::Instance().SetKeeper([this](const RegistryContent& content) {
      return persistent_.Save("registry", host::instrument::RegistryToJson(content)) == 0 ? DWORD{ERROR_SUCCESS}
                                                                                          : DWORD{ERROR_DISK_FULL};
    });
  }
  KeptRegistry(const KeptRegistry&) = delete;
  KeptRegistry& operator=(const KeptRegistry&) = delete;
  ~KeptRegistry() {
    Registry::Instance().SetKeeper(nullptr);
    Registry::Instance().Replace(host::DefaultRegistry());
  }

 private:
  host::instrument::RegistrySection section_;
  PersistentState persistent_;
};

/// Names under which the child stores its numbers in turn.
constexpr const WCHAR* kNames[] = {TEXT("a"), TEXT("b"), TEXT("c"), TEXT("d"), TEXT("e")};

/// The child: stores one number after the other and tells each once it is stored, until it is killed.
[[noreturn]] void StoreUntilKilled(const std::string& file, int told, std::uint32_t first) {
  const KeptRegistry kept(file);
  for (std::uint32_t number = first;; ++number) {
    if (Store(kNames[number % std::size(kNames)], number) != 0) _exit(1);
    if (write(told, &number, sizeof number) != sizeof number) _exit(1);
  }
}

/// Reads what the child tells until the pipe ends; the last number, or `last` when there is none.
std::uint32_t LastTold(int told, std::uint32_t last) {
  std::uint32_t number = 0;
  while (read(told, &number, sizeof number) == sizeof number) last = number;
  return last;
}

/// Starts the child, kills it this much later, or this much after it has told something, and returns the last number it
/// told.
std::uint32_t StoreAndKill(const std::string& file, std::uint32_t first, bool once_told,
                           std::chrono::microseconds life) {
  int pipe_ends[2];
  EXPECT_EQ(pipe(pipe_ends), 0);
  const pid_t child = fork();
  if (child == 0) StoreUntilKilled(file, pipe_ends[1], first);
  close(pipe_ends[1]);
  std::uint32_t last = first - 1;
  if (once_told) {
    EXPECT_EQ(read(pipe_ends[0], &last, sizeof last), ssize_t{sizeof last});
  }
  const auto end = std::chrono::steady_clock::now() + life;
  while (std::chrono::steady_clock::now() < end) {
  }
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  last = LastTold(pipe_ends[0], last);
  close(pipe_ends[0]);
  return last;
}

TEST(KilledWhileStoring, AThousandTimesTheFileIsWholeAndHoldsEveryAcknowledgedValue) {
  const TemporaryFolder folder;
  const std::string file = folder / "state.json";
  Fill(file, R"({"format": "qxsim state 1", "registry": {}})");
  std::mt19937 random(20240131);
  std::uint32_t told = 0;
  int cut_short = 0;
  for (int kills = 0; kills < 1000; ++kills) {
    told = StoreAndKill(file, told + 1, kills % 2 == 0, std::chrono::microseconds(random() % 4000));
    cut_short += fs::exists(file + ".new") ? 1 : 0;
    const Json kept = Json::parse(Content(file))["registry"];
    std::uint32_t newest = 0;
    for (std::uint32_t number = told; number > 0 && number + std::size(kNames) > told; --number) {
      const WCHAR name = *kNames[number % std::size(kNames)];
      const std::uint32_t value = kept["HKLM/Software/QXTest"][std::string(1, static_cast<char>(name))]["value"];
      ASSERT_TRUE(value == number || value == told + 1) << "told " << told << ", kept " << value << " for " << number;
      newest = std::max(newest, value);
    }
    told = newest;  // the one it had no time to tell counts too: the next child goes on behind it
  }
  std::cout << told << " values stored, " << cut_short << " kills while the file was written\n";
  EXPECT_GE(told, 500u);
  EXPECT_GT(cut_short, 0);
  EXPECT_LE(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 2);
}

TEST(PersistentStateTest, ADiskThatIsFullRefusesTheChangeAndKeepsTheFile) {
  const TemporaryFolder folder;
  KeptRegistry kept(folder / "state.json");
  const std::string before = Content(folder / "state.json");
  rlimit old = {};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {before.size() / 2, old.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  EXPECT_EQ(Store(TEXT("Written"), 7), static_cast<LONG>(ERROR_DISK_FULL));
  setrlimit(RLIMIT_FSIZE, &old);
  EXPECT_EQ(Content(folder / "state.json"), before);
  EXPECT_FALSE(fs::exists(folder / "state.json.new"));
  EXPECT_EQ(Store(TEXT("Written"), 7), 0);
}

TEST(PersistentStateTest, SavingASectionThatWasNeverAddedIsAnError) {
  const TemporaryFolder folder;
  PersistentState persistent(folder / "state.json");
  EXPECT_EQ(persistent.Save("registry", host::instrument::Json::object()), EINVAL);
}

TEST(PersistentStateTest, ARegistryWriteIsKeptInAFewMillisecondsInTime) {
  const TemporaryFolder folder;
  const KeptRegistry kept(folder / "state.json");
  std::vector<double> times;
  for (std::uint32_t round = 0; round < 200; ++round) {
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(Store(TEXT("Count"), round), 0);
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::nth_element(times.begin(), times.begin() + 100, times.end());
  std::cout << "median " << times[100] << " ms a write, " << fs::file_size(folder / "state.json") << " bytes\n";
  EXPECT_LT(times[100], 250.0);
}

}  // namespace
}  // namespace qxtest
