// The controller's side of the state document (battery, clock, system), on a whole simulator whose service is open.
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "common/calls/ce_calls.h"
#include "common/system/identity.h"
#include "common/system/power.h"
#include "common/system/programs.h"
#include "instrument/battery.h"
#include "instrument/instrument_libraries.h"
#include "support/test_application.h"
#include "tools/simulator_test.h"
#include "unit/instrument/event_sink.h"

namespace qxtest {
namespace {

using BatteryQuery = std::int32_t(WINAPI*)(std::uint32_t*);
using Record = std::array<std::uint32_t, 4>;

class ControllerSections : public SimulatorTest {
 protected:
  // The service asks for the batteries once right after its open: no test shall meet that.
  void SetUp() override {
    ASSERT_TRUE(WaitUntil([&] { return !CallsSince(0, {QX_BATTERY_QUERY_ORDINAL}).empty(); }));
  }

  Json Patch(const std::string& section, const Json& patch) const {
    return Ask("PATCH", "/state", {{section, patch}})[section];
  }
  bool Refuses(const std::string& section, const Json& patch) const {
    return Call("PATCH", "/state", {{section, patch}}).status == 400;
  }
  std::uint64_t NextCall() const { return Ask("GET", "/calls")["next"]; }
  /// Those of these names or ordinals: the threads of the open service make calls of their own all the while.
  Json CallsSince(std::uint64_t n, const std::vector<Json>& names) const {
    const Json calls = Ask("GET", "/calls?since=" + std::to_string(n))["calls"];
    Json found = Json::array();
    for (const Json& call : calls) {
      if (std::find(names.begin(), names.end(), call["call"]) != names.end()) found.push_back(call);
    }
    return found;
  }
};

using BatterySection = ControllerSections;
using ClockSection = ControllerSections;
using SystemSection = ControllerSections;

/// As the library finds it.
BatteryQuery FindQuery() {
  const HMODULE library = GetModuleHandleW(TEXT("QxSystem.dll"));
  const FARPROC found = GetProcAddressW(library, MAKEINTRESOURCEW(QX_BATTERY_QUERY_ORDINAL));
  return reinterpret_cast<BatteryQuery>(reinterpret_cast<void (*)()>(found));
}

TEST_F(BatterySection, StandsAtItsDefaults) {
  EXPECT_EQ(State()["battery"], (Json{{"left", 80}, {"right", 71}, {"external", 0}, {"source", 0}}));
}

TEST_F(BatterySection, IsReadThroughTheQuery) {
  Patch("battery", {{"left", 1}, {"right", 4294967295}, {"external", 3}, {"source", 2}});
  Record record = {};
  const BatteryQuery query = FindQuery();
  ASSERT_NE(query, nullptr);
  EXPECT_EQ(query(record.data()), 0);
  EXPECT_EQ(record, (Record{1, 4294967295, 3, 2}));
  EXPECT_EQ(query(nullptr), -1);
}

TEST_F(BatterySection, ListsTheQueryByItsOrdinal) {
  const std::uint64_t since = NextCall();
  Record record = {};
  FindQuery()(record.data());
  const Json calls = CallsSince(since, {QX_BATTERY_QUERY_ORDINAL});
  ASSERT_EQ(calls.size(), 1u) << calls;
  EXPECT_EQ(calls[0]["library"], "QxSystem");
  EXPECT_EQ(calls[0]["args"], Json::array());
  EXPECT_EQ(calls[0]["result"], 0);
}

TEST_F(BatterySection, LetsAFaultReachTheQuery) {
  Ask("POST", "/faults", {{"library", "QxSystem"}, {"call", QX_BATTERY_QUERY_ORDINAL}, {"result", -1}});
  Record record = {9, 9, 9, 9};
  EXPECT_EQ(FindQuery()(record.data()), -1);
  EXPECT_EQ(record, (Record{9, 9, 9, 9}));
}

TEST_F(BatterySection, TakesUnsigned32BitNumbersOnly) {
  for (const Json& value : {Json(-1), Json(4294967296), Json(1.5), Json("80"), Json(nullptr)}) {
    EXPECT_TRUE(Refuses("battery", {{"left", value}})) << value;
  }
  EXPECT_TRUE(Refuses("battery", {{"general", 1}}));
  EXPECT_EQ(State()["battery"]["left"], 80);
}

TEST_F(BatterySection, IsReset) {
  Patch("battery", {{"left", 1}, {"source", 2}});
  EXPECT_EQ(Ask("POST", "/reset")["battery"], (Json{{"left", 80}, {"right", 71}, {"external", 0}, {"source", 0}}));
}

TEST_F(BatterySection, TellsEveryChangeAsTheBatteryEvent) {
  EventSink sink;
  Patch("battery", {{"left", 5}, {"right", 6}});
  EXPECT_EQ(sink.Masks(1), (std::vector<std::uint32_t>{0x20000}));
  Patch("system", {{"language", 1041}});
  EXPECT_EQ(sink.seen().size(), 1u);
}

TEST_F(BatterySection, IsToldOnceToEveryServiceThatIsOpened) {
  const auto told = [this] { return State()["event_window"]["previous_called"].get<int>(); };
  const int at_start = told();
  EXPECT_EQ(at_start, 1);
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COMBT:"}}), 0);
  EXPECT_EQ(told(), 2);
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COMBT:"}}), 0) << "it is open already";
  EXPECT_EQ(told(), 2);
}

TEST_F(ClockSection, StandsAtItsDefaults) {
  const Json clock = State()["clock"];
  EXPECT_EQ(clock["running"], true);
  EXPECT_EQ(clock["zone"], "W. Europe Standard Time");
  EXPECT_EQ(clock["rules"], (Json{{"bias", -60},
                                  {"standard_bias", 0},
                                  {"daylight_bias", -60},
                                  {"standard_date", {0, 10, 0, 5, 3, 0, 0, 0}},
                                  {"daylight_date", {0, 3, 0, 5, 2, 0, 0, 0}},
                                  {"standard_name", "W. Europe Standard Time"},
                                  {"daylight_name", "W. Europe Daylight Time"}}));
}

TEST_F(ClockSection, ShowsAndSetsTheLocalTime) {
  for (const char* local : {"1980-01-01T00:00:00", "2024-02-29T23:59:58", "2100-12-31T12:00:00"}) {
    EXPECT_EQ(Patch("clock", {{"running", false}, {"local", local}})["local"], local);
    SYSTEMTIME time = {};
    GetLocalTime(&time);
    EXPECT_EQ(time.wYear, std::stoi(local));
  }
}

TEST_F(ClockSection, StandsStillUntilItRuns) {
  Patch("clock", {{"local", "2024-01-31T09:30:05"}, {"running", false}});
  const SYSTEMTIME set = {2024, 1, 3, 31, 9, 30, 5, 0};
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  EXPECT_EQ(std::memcmp(&now, &set, sizeof now), 0);
  EXPECT_EQ(State()["clock"]["running"], false);
  Patch("clock", {{"running", true}});
  EXPECT_TRUE(WaitUntil([] {
    SYSTEMTIME later = {};
    GetLocalTime(&later);
    return later.wMilliseconds != 0;
  }));
}

TEST_F(ClockSection, ShowsWhatTheLibrarySets) {
  Patch("clock", {{"running", false}});
  const SYSTEMTIME time = {1999, 12, 0, 31, 23, 59, 59, 0};
  ASSERT_TRUE(SetLocalTime(&time));
  EXPECT_EQ(State()["clock"]["local"], "1999-12-31T23:59:59");
}

TEST_F(ClockSection, ChangesItsZoneByKeyNameAndKeepsTheMoment) {
  Patch("clock", {{"running", false}, {"local", "2024-01-31T09:30:05"}});
  const Json clock = Patch("clock", {{"zone", "Tokyo Standard Time"}});
  EXPECT_EQ(clock["zone"], "Tokyo Standard Time");
  EXPECT_EQ(clock["local"], "2024-01-31T17:30:05");
  EXPECT_EQ(clock["rules"]["bias"], -540);
}

TEST_F(ClockSection, TakesALocalTimeGivenWithAZoneAsThatZones) {
  const Json patch = {{"local", "2024-07-01T12:00:00"}, {"zone", "Eastern Standard Time"}, {"running", false}};
  EXPECT_EQ(Patch("clock", patch)["local"], "2024-07-01T12:00:00");
}

TEST_F(ClockSection, ShowsTheStandardNameOfAZoneSetByTheLibrary) {
  TIME_ZONE_INFORMATION zone = {};
  zone.Bias = -345;
  for (WCHAR& unit : zone.StandardName) unit = u'x';  // no terminating zero
  ASSERT_TRUE(SetTimeZoneInformation(&zone));
  EXPECT_EQ(State()["clock"]["zone"], std::string(32, 'x'));
  EXPECT_EQ(State()["clock"]["rules"]["bias"], -345);
}

TEST_F(ClockSection, RefusesWhatIsNoLocalTimeOrZone) {
  for (const Json& local : {Json("2024-01-31"), Json("2024-01-31 09:30:05"), Json("2024-01-31T09:30:05Z"),
                            Json("2024-01-31T09:30:05.5"), Json("2023-02-29T00:00:00"), Json("2024-13-01T00:00:00"),
                            Json("2024-01-01T24:00:00"), Json("1601-01-01T00:00:00"), Json("2024-01-0xT00:00:00"),
                            Json("+024-01-01T00:00:00"), Json(""), Json(5), Json(nullptr)}) {
    EXPECT_TRUE(Refuses("clock", {{"local", local}})) << local;
  }
  for (const Json& zone : {Json("Nowhere Standard Time"), Json(""), Json(110), Json(nullptr)}) {
    EXPECT_TRUE(Refuses("clock", {{"zone", zone}})) << zone;
  }
  EXPECT_TRUE(Refuses("clock", {{"running", 1}}));
  EXPECT_TRUE(Refuses("clock", {{"rules", {{"bias", 0}}}}));
}

TEST_F(ClockSection, ChangesNothingWhenOneMemberIsRefused) {
  Patch("clock", {{"running", false}, {"local", "2024-01-31T09:30:05"}});
  const Json before = State()["clock"];
  EXPECT_TRUE(Refuses("clock", {{"zone", "Tokyo Standard Time"}, {"local", "never"}}));
  EXPECT_EQ(State()["clock"], before);
}

TEST_F(ClockSection, IsResetToTheMachinesTime) {
  Patch("clock", {{"running", false}, {"local", "1980-01-01T00:00:00"}, {"zone", "Tokyo Standard Time"}});
  const Json clock = Ask("POST", "/reset")["clock"];
  EXPECT_EQ(clock["zone"], "W. Europe Standard Time");
  EXPECT_EQ(clock["running"], true);
  EXPECT_GE(clock["local"].get<std::string>(), "2024");
}

TEST_F(ClockSection, ListsSettingTheClockAndTheZoneAndNothingElseOfThem) {
  const std::uint64_t since = NextCall();
  SYSTEMTIME time = {};
  TIME_ZONE_INFORMATION zone = {};
  GetLocalTime(&time);
  GetTimeZoneInformation(&zone);
  SetLocalTime(&time);
  SetTimeZoneInformation(&zone);
  SetLocalTime(nullptr);
  const Json calls =
      CallsSince(since, {"GetLocalTime", "SetLocalTime", "GetTimeZoneInformation", "SetTimeZoneInformation"});
  ASSERT_EQ(calls.size(), 3u) << calls;
  EXPECT_EQ(calls[0]["call"], "SetLocalTime");
  EXPECT_EQ(calls[0]["args"], Json::array());
  EXPECT_EQ(calls[1]["call"], "SetTimeZoneInformation");
  EXPECT_EQ(calls[1]["result"], 1);
  EXPECT_EQ(calls[2]["args"], Json::array({nullptr}));
  EXPECT_EQ(calls[2]["result"], 0);
}

TEST_F(ClockSection, LetsFaultsReachTheCalls) {
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "SetTimeZoneInformation"}, {"error", 5}});
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "GetTimeZoneInformation"}, {"error", 5}});
  TIME_ZONE_INFORMATION zone = {};
  EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_INVALID);
  EXPECT_FALSE(SetTimeZoneInformation(&zone));
  EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
  EXPECT_EQ(State()["clock"]["zone"], "W. Europe Standard Time");
}

TEST_F(SystemSection, StandsAtItsDefaults) {
  EXPECT_EQ(State()["system"], (Json{{"os_revision", {6, 0, 2, 1}}, {"language", 1033}, {"power", "on"}}));
}

TEST_F(SystemSection, SetsRevisionAndLanguage) {
  Patch("system", {{"os_revision", {255, 0, 1, 128}}, {"language", 1041}});
  EXPECT_EQ(host::OsRevision(), 0xFF000180u);
  EXPECT_EQ(host::SystemLanguage(), 1041);
  EXPECT_EQ(State()["system"]["os_revision"], (Json{255, 0, 1, 128}));
}

TEST_F(SystemSection, IsWhatTheLibraryIsTold) {
  Patch("system", {{"os_revision", {255, 0, 1, 128}}, {"language", 1041}});
  const std::uint64_t since = NextCall();
  EXPECT_EQ(GetProductOSRevision(), 0xFF000180u);
  EXPECT_EQ(GetSystemDefaultLangID(), 1041);
  const Json calls = CallsSince(since, {"GetProductOSRevision", "GetSystemDefaultLangID"});
  ASSERT_EQ(calls.size(), 1u) << calls;
  EXPECT_EQ(calls[0]["library"], "OPVLIB");
  EXPECT_EQ(calls[0]["call"], "GetProductOSRevision");
  EXPECT_EQ(calls[0]["args"], Json::array());
  EXPECT_EQ(calls[0]["result"], 0xFF000180u);
}

TEST_F(SystemSection, LetsFaultsReachTheCalls) {
  Ask("POST", "/faults", {{"library", "OPVLIB"}, {"call", "GetProductOSRevision"}, {"result", 5}});
  Ask("POST", "/faults", {{"library", "COREDLL"}, {"call", "GetSystemDefaultLangID"}, {"result", 1041}});
  EXPECT_EQ(GetProductOSRevision(), 5u);
  EXPECT_EQ(GetSystemDefaultLangID(), 1041);
  EXPECT_EQ(GetSystemDefaultLangID(), 1033);
}

TEST_F(SystemSection, RefusesWhatIsNoValueOfTheirs) {
  for (const Json& revision : {Json{6, 0, 2}, Json{6, 0, 2, 1, 0}, Json{6, 0, 2, 256}, Json{6, 0, 2, -1},
                               Json{6, 0, 2, 1.5}, Json{6, 0, 2, "1"}, Json("6.0.2.1"), Json(nullptr)}) {
    EXPECT_TRUE(Refuses("system", {{"os_revision", revision}})) << revision;
  }
  for (const Json& language : {Json(-1), Json(65536), Json("1033")}) {
    EXPECT_TRUE(Refuses("system", {{"language", language}})) << language;
  }
  EXPECT_TRUE(Refuses("system", {{"power", "sideways"}}));
}

TEST_F(SystemSection, ShowsThatTheControllerWasSwitchedOff) {
  WCHAR command_line[] = u"-fulloff";
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(
      CreateProcessW(u"opvutil.exe", command_line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process));
  EXPECT_EQ(State()["system"]["power"], "off");
  EXPECT_EQ(Patch("system", {{"power", "on"}})["power"], "on");
  EXPECT_EQ(Patch("system", {{"power", "off"}})["power"], "off");
  for (const HANDLE handle : {process.hThread, process.hProcess}) CloseHandle(handle);
}

TEST_F(SystemSection, IsReset) {
  Patch("system", {{"os_revision", {1, 2, 3, 4}}, {"language", 1041}, {"power", "suspend"}});
  EXPECT_EQ(Ask("POST", "/reset")["system"],
            (Json{{"os_revision", {6, 0, 2, 1}}, {"language", 1033}, {"power", "on"}}));
  EXPECT_TRUE(host::StartedPrograms().empty());
}

}  // namespace
}  // namespace qxtest
