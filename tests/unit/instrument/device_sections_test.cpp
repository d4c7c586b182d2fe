// The devices' side of the state document (sensors, gpio, radio), on a whole simulator whose service is open.
#include <windows.h>

#include <vector>

#include "instrument/gpio.h"
#include "instrument/radio.h"
#include "instrument/sensors.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

using host::instrument::Sensors;
using host::instrument::SensorSet;

class DeviceSections : public SimulatorTest {
 protected:
  Json Patch(const std::string& section, const Json& patch) const {
    return Ask("PATCH", "/state", {{section, patch}})[section];
  }
  /// Why the patch is refused; empty when it is not.
  std::string Refusal(const std::string& section, const Json& patch) const {
    const qxsim::Response response = Call("PATCH", "/state", {{section, patch}});
    return response.status == 400 ? Json::parse(response.body)["error"].get<std::string>() : "";
  }
  bool Refuses(const std::string& section, const Json& patch) const { return !Refusal(section, patch).empty(); }
};

using SensorsSection = DeviceSections;
using GpioSection = DeviceSections;
using RadioSection = DeviceSections;

Json StandardSensors() {
  return {{"edm",
           {{"present", true},
            {"offset", 0},
            {"version", {1, 2, 3, 4}},
            {"checksum", 4660},
            {"fpga_version", {1, 0, 0, 1}}}},
          {"angle",
           {{"present", true}, {"x", 0}, {"y", 0}, {"tilt_switch", 0}, {"version", {1, 2, 3, 4}}, {"checksum", 4660}}},
          {"focus", {{"present", true}, {"status", 0}, {"version", {1, 2, 3, 4}}, {"checksum", 4660}}},
          {"temperature", {{"present", true}, {"answer", "00962794"}}}};
}

TEST_F(SensorsSection, StandsAtItsDefaults) { EXPECT_EQ(State()["sensors"], StandardSensors()); }

TEST_F(SensorsSection, TakesEveryMember) {
  const Json patch = {
      {"edm",
       {{"present", false},
        {"offset", -32768},
        {"version", {0, 255, 1, 2}},
        {"checksum", 65535},
        {"fpga_version", {4, 3, 2, 1}}}},
      {"angle",
       {{"present", false}, {"x", 65535}, {"y", 1}, {"tilt_switch", 2}, {"version", {9, 9, 9, 9}}, {"checksum", 0}}},
      {"focus", {{"present", false}, {"status", 255}, {"version", {8, 8, 8, 8}}, {"checksum", 1}}},
      {"temperature", {{"present", false}, {"answer", "0A1B"}}}};
  EXPECT_EQ(Patch("sensors", patch), patch);
  EXPECT_EQ(State()["sensors"], patch);
  EXPECT_EQ(Sensors::Instance().Use([](SensorSet& set) { return set.edm.offset; }), -32768);
  EXPECT_EQ(Ask("POST", "/reset")["sensors"], StandardSensors());
}

TEST_F(SensorsSection, LeavesWhatAPatchDoesNotName) {
  Patch("sensors", {{"angle", {{"x", 7}}}});
  Patch("sensors", {{"angle", {{"y", 8}}}, {"focus", Json::object()}});
  Json expected = StandardSensors();
  expected["angle"]["x"] = 7;
  expected["angle"]["y"] = 8;
  EXPECT_EQ(State()["sensors"], expected);
}

TEST_F(SensorsSection, ShowsWhatTheBusSets) {
  Sensors::Instance().Transfer(0x10, {0x08, 0x10, 0x01, 0x02, 0x03, 0x04}, nullptr);
  Sensors::Instance().Transfer(0x10, {0x08, 0x11, 0x02}, nullptr);
  EXPECT_EQ(State()["sensors"]["angle"]["x"], 0x0102);
  EXPECT_EQ(State()["sensors"]["angle"]["y"], 0x0304);
  EXPECT_EQ(State()["sensors"]["angle"]["tilt_switch"], 2);
}

TEST_F(SensorsSection, RefusesNumbersOutOfRange) {
  const auto refuses_ends = [this](const char* sensor, const char* member, int lowest, int highest) {
    return Refuses("sensors", {{sensor, {{member, lowest - 1}}}}) &&
           Refuses("sensors", {{sensor, {{member, highest + 1}}}}) &&
           !Refuses("sensors", {{sensor, {{member, lowest}}}}) && !Refuses("sensors", {{sensor, {{member, highest}}}});
  };
  EXPECT_TRUE(refuses_ends("edm", "offset", -32768, 32767));
  EXPECT_TRUE(refuses_ends("angle", "tilt_switch", 0, 255));
  EXPECT_TRUE(refuses_ends("focus", "status", 0, 255));
  for (const char* member : {"x", "y"}) EXPECT_TRUE(refuses_ends("angle", member, 0, 65535)) << member;
  for (const char* sensor : {"edm", "angle", "focus"})
    EXPECT_TRUE(refuses_ends(sensor, "checksum", 0, 65535)) << sensor;
}

TEST_F(SensorsSection, RefusesValuesOfAnotherType) {
  for (const Json& version : {Json{1, 2, 3}, Json{1, 2, 3, 4, 5}, Json{1, 2, 3, 256}, Json{1, 2, 3, -1},
                              Json{1, 2, 3, 0.5}, Json{1, 2, 3, "4"}, Json("1.2.3.4"), Json(nullptr)}) {
    EXPECT_TRUE(Refuses("sensors", {{"edm", {{"version", version}}}})) << version;
    EXPECT_TRUE(Refuses("sensors", {{"edm", {{"fpga_version", version}}}})) << version;
  }
  for (const Json& value : {Json(1.5), Json("1"), Json(nullptr), Json(true)}) {
    EXPECT_TRUE(Refuses("sensors", {{"angle", {{"x", value}}}})) << value;
  }
  EXPECT_TRUE(Refuses("sensors", {{"focus", {{"present", 1}}}}));
  for (const Json& answer :
       {Json("0"), Json("0G"), Json("0x00"), Json(0), Json(nullptr), Json(std::string(2050, '0'))}) {
    EXPECT_TRUE(Refuses("sensors", {{"temperature", {{"answer", answer}}}})) << answer;
  }
  EXPECT_EQ(State()["sensors"], StandardSensors());
}

TEST_F(SensorsSection, NamesWhatItRefuses) {
  EXPECT_EQ(Refusal("sensors", {{"edm", {{"offset", 40000}}}}),
            "sensors.edm.offset: a whole number from -32768 to 32767 is expected");
  EXPECT_EQ(Refusal("sensors", {{"edm", {{"phase", 1}}}}), "unknown member: sensors.edm.phase");
  EXPECT_EQ(Refusal("sensors", {{"edm2", Json::object()}}), "unknown member: sensors.edm2");
  EXPECT_EQ(Refusal("sensors", {{"edm", 5}}), "sensors.edm: an object is expected");
  EXPECT_EQ(Refusal("sensors", 5), "sensors: an object is expected");
}

TEST_F(SensorsSection, ChangesNothingWhenOneMemberIsRefused) {
  EXPECT_TRUE(Refuses("sensors", {{"edm", {{"offset", 5}}}, {"angle", {{"x", 6}, {"y", -1}}}}));
  EXPECT_EQ(State()["sensors"], StandardSensors());
}

TEST_F(SensorsSection, AResetMakesSensorsForgetWhatTheyWereSent) {
  Sensors::Instance().Transfer(0x16, {0xC0, 0x08}, nullptr);
  Ask("POST", "/reset");
  std::vector<std::uint8_t> read(2);
  Sensors::Instance().Transfer(0x16, {}, &read);
  EXPECT_EQ(read, (std::vector<std::uint8_t>{0xFF, 0xFF}));
}

TEST_F(SensorsSection, FaultsAndCallsOfTheBusGoThroughTheApi) {
  const std::uint64_t since = Ask("GET", "/calls")["next"];
  Ask("POST", "/faults", {{"library", "I2C5:"}, {"call", "write"}, {"nth", 2}, {"error", 121}});
  const HANDLE bus = CreateFileW(u"I2C5:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  std::uint8_t bytes[] = {0x10, 0x08, 0x11, 0x02};
  const auto write = [&] { return DeviceIoControl(bus, 0xA8D42000, bytes, 4, nullptr, 0, nullptr, nullptr) != FALSE; };
  EXPECT_TRUE(write());
  EXPECT_FALSE(write());
  EXPECT_TRUE(write());
  EXPECT_TRUE(CloseHandle(bus));
  Json results = Json::array();
  const Json calls = Ask("GET", "/calls?since=" + std::to_string(since))["calls"];
  for (const Json& call : calls) {
    if (call["library"] != "I2C5:" || call["call"] != "write") continue;
    EXPECT_EQ(call["args"], (Json{16, "081102", 0}));
    results.push_back(call["result"]);
  }
  EXPECT_EQ(results, (Json{1, 0, 1}));
}

TEST_F(GpioSection, ShowsLine14AndTheLinesThatHaveBeenDriven) {
  EXPECT_EQ(State()["gpio"], (Json{{"14", 0}}));
  host::instrument::Gpio::Instance().Drive(14, 1);
  host::instrument::Gpio::Instance().Drive(3, 1);
  EXPECT_EQ(State()["gpio"], (Json{{"3", 1}, {"14", 1}}));
  EXPECT_EQ(Ask("POST", "/reset")["gpio"], (Json{{"14", 0}}));
}

TEST_F(GpioSection, IsReadOnly) {
  EXPECT_EQ(Refusal("gpio", {{"14", 1}}), "gpio.14 is read-only");
  EXPECT_TRUE(Refuses("gpio", Json{1}));
  EXPECT_TRUE(Refuses("gpio", nullptr));
  EXPECT_FALSE(Refuses("gpio", Json::object()));
  EXPECT_EQ(State()["gpio"], (Json{{"14", 0}}));
}

TEST_F(RadioSection, StandsAtItsDefaultsAndIsReset) {
  const Json standard = {{"mode", 2}, {"can_switch", true}, {"port_up_after_ms", 0}};
  EXPECT_EQ(State()["radio"], standard);
  const Json changed = {{"mode", 0}, {"can_switch", false}, {"port_up_after_ms", 500}};
  EXPECT_EQ(Patch("radio", changed), changed);
  EXPECT_EQ(Ask("POST", "/reset")["radio"], standard);
}

TEST_F(RadioSection, RefusesWhatIsNoValueOfIts) {
  for (const Json& mode : {Json(-1), Json(3), Json("2"), Json(nullptr)})
    EXPECT_TRUE(Refuses("radio", {{"mode", mode}}));
  EXPECT_TRUE(Refuses("radio", {{"can_switch", 1}}));
  EXPECT_TRUE(Refuses("radio", {{"port_up_after_ms", -1}}));
  EXPECT_TRUE(Refuses("radio", {{"port_up_after_ms", 3600001}}));
  EXPECT_TRUE(Refuses("radio", {{"name", "x"}}));
}

TEST_F(RadioSection, ShowsWhatTheLibrarySetsAndStopsItWhenItShall) {
  EXPECT_EQ(BthUtilSetRadioMode(1), 0);
  EXPECT_EQ(State()["radio"]["mode"], 1);
  Patch("radio", {{"can_switch", false}});
  EXPECT_NE(BthUtilSetRadioMode(2), 0);
  EXPECT_EQ(State()["radio"]["mode"], 1);
}

TEST_F(RadioSection, DecidesWhetherTheBluetoothPortOpens) {
  const auto opens = [] {
    const HANDLE port = CreateFileW(u"COMBT:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return port != INVALID_HANDLE_VALUE && CloseHandle(port);
  };
  EXPECT_TRUE(opens());
  Patch("radio", {{"mode", 1}});
  EXPECT_FALSE(opens());
  EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
  Patch("radio", {{"mode", 2}, {"port_up_after_ms", 3600000}});
  EXPECT_FALSE(opens());
  Patch("radio", {{"port_up_after_ms", 0}});
  EXPECT_TRUE(opens());
}

}  // namespace
}  // namespace qxtest
