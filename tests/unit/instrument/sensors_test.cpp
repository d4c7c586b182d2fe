// The sensors byte by byte, through the bus.
#include "instrument/sensors.h"

#include "unit/instrument/device_bus.h"

namespace qxtest {
namespace {

using host::instrument::SensorSet;

constexpr std::uint8_t kEdm = 0x2C >> 1;
constexpr std::uint8_t kAngle = 0x20 >> 1;
constexpr std::uint8_t kFocus = 0x70 >> 1;
constexpr std::uint8_t kTemperature = 0xC0 >> 1;

using EdmSensor = SensorBus;
using AngleSensor = SensorBus;
using FocusDrive = SensorBus;
using TemperatureSensor = SensorBus;
using EverySensor = SensorBus;

TEST_F(EdmSensor, GivesItsOffsetLowByteFirst) {
  Use([](SensorSet& set) { set.edm.offset = 0x1234; });
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "003412");
  Use([](SensorSet& set) { set.edm.offset = -250; });
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "0006FF");
}

TEST_F(EdmSensor, StoresAWrittenOffsetOnCommandOnly) {
  EXPECT_TRUE(Write(kEdm, "001D06FF"));
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "000000");
  EXPECT_TRUE(Write(kEdm, "40C3"));
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "0006FF");
  EXPECT_EQ(Use([](SensorSet& set) { return set.edm.offset; }), -250);
}

TEST_F(EdmSensor, StoresNothingThatWasNotWritten) {
  Use([](SensorSet& set) { set.edm.offset = 7; });
  EXPECT_TRUE(Write(kEdm, "40C3"));
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "000700");
}

TEST_F(EdmSensor, GivesItsVersionsInTheOrderListed) {
  Use([](SensorSet& set) { set.edm.version = {3, 0x92, 5, 6}, set.edm.fpga_version = {9, 8, 7, 0xFF}; });
  EXPECT_EQ(Answer(kEdm, "C007", 5), "0003920506");
  EXPECT_EQ(Answer(kEdm, "C007", 3), "000392");
  EXPECT_EQ(Answer(kEdm, "C009", 5), "00090807FF");
}

TEST_F(EdmSensor, GivesItsChecksumLowByteFirst) { EXPECT_EQ(Answer(kEdm, "C008", 3), "003412"); }

TEST_F(AngleSensor, GivesItsPairHighBytesFirst) {
  Use([](SensorSet& set) { set.angle.x = 0x1234, set.angle.y = 0xFEDC; });
  EXPECT_EQ(Answer(kAngle, "0011", 5), "001234FEDC");
}

TEST_F(AngleSensor, TakesItsPairHighBytesFirst) {
  EXPECT_TRUE(Write(kAngle, "0810FEDC0102"));
  EXPECT_EQ(Use([](SensorSet& set) { return set.angle.x; }), 0xFEDC);
  EXPECT_EQ(Use([](SensorSet& set) { return set.angle.y; }), 0x0102);
}

TEST_F(AngleSensor, TakesItsTiltSwitch) {
  EXPECT_TRUE(Write(kAngle, "081102"));
  EXPECT_EQ(Use([](SensorSet& set) { return set.angle.tilt_switch; }), 2);
}

TEST_F(AngleSensor, GivesItsVersionAndItsChecksumHighByteFirst) {
  EXPECT_EQ(Answer(kAngle, "0001", 5), "0001020304");
  EXPECT_EQ(Answer(kAngle, "0002", 3), "001234");
}

TEST_F(FocusDrive, GivesItsStatusBeforeVersionAndChecksum) {
  EXPECT_EQ(Answer(kFocus, "C007", 5), "0001020304");
  EXPECT_EQ(Answer(kFocus, "C008", 3), "003412");
  Use([](SensorSet& set) { set.focus.status = 0x80; });
  EXPECT_EQ(Answer(kFocus, "C007", 5), "8001020304");
  EXPECT_EQ(Answer(kFocus, "C008", 3), "803412");
}

TEST_F(TemperatureSensor, AnswersEveryTransferTheSame) {
  Use([](SensorSet& set) { set.temperature.answer = {0xCA, 0xFE, 0x01}; });
  EXPECT_EQ(Transfer(kTemperature, "A1B2", 3), "CAFE01");
  EXPECT_EQ(Transfer(kTemperature, "00", 2), "CAFE");
  EXPECT_EQ(Transfer(kTemperature, "00", 5), "CAFE01FFFF");
  EXPECT_EQ(Read(kTemperature, 3), "CAFE01");
}

TEST_F(EverySensor, ReadsAsAnIdleBusBeforeACommand) {
  for (const std::uint8_t address : {kEdm, kAngle, kFocus}) EXPECT_EQ(Read(address, 3), "FFFFFF") << int{address};
}

TEST_F(EverySensor, ReadsAsAnIdleBusBeyondItsAnswer) {
  EXPECT_EQ(Answer(kEdm, "C01D", 5), "000000FFFF");
  EXPECT_EQ(Answer(kAngle, "0001", 7), "0001020304FFFF");
}

TEST_F(EverySensor, AcknowledgesAndIgnoresWhatItDoesNotKnow) {
  for (const char* sent : {"C0", "C01D00", "1234", "001D01", "08100102030405", "0811", "0810", "40C300"}) {
    for (const std::uint8_t address : {kEdm, kAngle, kFocus}) EXPECT_EQ(Answer(address, sent, 2), "FFFF") << sent;
  }
  EXPECT_EQ(Answer(kEdm, "C01D", 3), "000000");
  EXPECT_EQ(Answer(kAngle, "0011", 5), "0000000000");
}

TEST_F(EverySensor, RemembersItsCommandForEveryFurtherRead) {
  EXPECT_TRUE(Write(kEdm, "C008"));
  EXPECT_TRUE(Write(kAngle, "0002"));
  EXPECT_TRUE(Write(kEdm, "")) << "the address alone";
  EXPECT_EQ(Read(kEdm, 3), "003412");
  EXPECT_EQ(Read(kEdm, 3), "003412");
  EXPECT_EQ(Read(kAngle, 3), "001234");
}

TEST_F(EverySensor, AnswersACombinedTransferLikeTwo) { EXPECT_EQ(Transfer(kAngle, "0001", 5), "0001020304"); }

TEST_F(EverySensor, DoesNotAnswerUnlessItIsPresent) {
  Use([](SensorSet& set) {
    set.edm.present = set.angle.present = set.focus.present = set.temperature.present = false;
  });
  for (const std::uint8_t address : {kEdm, kAngle, kFocus, kTemperature}) {
    EXPECT_FALSE(Write(address, "C007"));
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    EXPECT_EQ(Read(address, 1), "error 1117");
    EXPECT_EQ(Transfer(address, "00", 1), "error 1117");
  }
}

TEST_F(EverySensor, HasAnAddressAndNothingElseHas) {
  int answering = 0;
  for (unsigned address = 0; address <= 0xFF; ++address) {
    answering += Write(static_cast<std::uint8_t>(address), "") ? 1 : 0;
  }
  EXPECT_EQ(answering, 4);
  EXPECT_EQ(Read(0x42 >> 1, 1), "error 1117");
  EXPECT_EQ(Read(0x2C, 1), "error 1117") << "an address of eight bits";
}

}  // namespace
}  // namespace qxtest
