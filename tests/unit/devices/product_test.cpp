// GT_PIF: what each component is asked over the bus, and the texts made of its answers.
#include <gtest/gtest.h>

#include <string>

#include "common/system/identity.h"
#include "support/pe_file.h"
#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

constexpr double kThreeSeconds = 2999;  // milliseconds: the tick that the wait begins in may be nearly over

using FileTexts = std::vector<std::pair<std::u16string, std::u16string>>;

class GT_PIF : public testing::Test {
 protected:
  std::string Answer(const std::string& fields) { return service_.Answer("GT_PIF," + fields); }
  Texts Bus() const { return service_.Bus(); }
  /// The version a distance meter of type 1 tells by three bytes.
  std::string VnsVersion(std::uint8_t first, std::uint8_t second) {
    service_.SetDistanceMeterType(1);
    service_.Sensors([=](auto& sensors) { sensors.edm.version = {first, second, 0xEE, 0xEE}; });
    return Answer("NAM=EDM,VER");
  }
  void MakeModule(const std::string& path, const FileTexts& texts) {
    const FileBytes file = PeFile(VersionResource({{0x0409, 1200, texts}}));
    service_.MakeFile(path, std::string(file.begin(), file.end()));
  }
  DeviceService service_;
};

TEST_F(GT_PIF, WantsAName) {
  EXPECT_EQ(service_.Answer("GT_PIF"), "ER_PRM");
  EXPECT_EQ(Answer("VER,SUM"), "ER_PRM");
}

TEST_F(GT_PIF, AnswersTheNameAloneWhenNothingIsAsked) {
  for (const char* name : {"EDM", "EDMFPGA", "ANGLE", "FOCUS"}) {
    EXPECT_EQ(Answer(std::string("NAM=") + name), std::string("PIF,NAM=") + name);
    EXPECT_EQ(Bus(), Texts{});
  }
}

TEST_F(GT_PIF, LooksAtThePresenceOfItsKeysOnly) { EXPECT_EQ(Answer("VER=0,NAM=FOCUS"), "PIF,NAM=FOCUS,VER=1.2.3.4"); }

// ---- Operating system

TEST_F(GT_PIF, TellsTheOperatingSystemAndItsRevision) {
  EXPECT_EQ(Answer("NAM=OS"), "PIF,NAM=Windows CE ENG");
  EXPECT_EQ(Answer("NAM=OS,VER"), "PIF,NAM=Windows CE ENG,VER=6.0.2.1");
  host::SetOsRevision(0xFF00807F);
  EXPECT_EQ(Answer("NAM=OS,VER"), "PIF,NAM=Windows CE ENG,VER=255.0.128.127");
}

TEST_F(GT_PIF, TellsTheSystemsLanguage) {
  host::SetSystemLanguage(1041);
  EXPECT_EQ(Answer("NAM=OS,VER"), "PIF,NAM=Windows CE JPN,VER=6.0.2.1");
  host::SetSystemLanguage(1031);
  EXPECT_EQ(Answer("NAM=OS"), "PIF,NAM=Windows CE ENG");
}

TEST_F(GT_PIF, HasNoChecksumOfTheOperatingSystem) {
  EXPECT_EQ(Answer("NAM=OS,SUM"), "ER_PRM");
  EXPECT_EQ(Answer("NAM=OS,VER,SUM"), "ER_PRM");
}

// ---- Distance meter

TEST_F(GT_PIF, ReadsTheDistanceMetersVersionFromItsLastByte) {
  service_.Sensors([](auto& sensors) { sensors.edm.version = {1, 20, 0, 255}; });
  EXPECT_EQ(Answer("NAM=EDM,VER"), "PIF,NAM=EDM,VER=255.0.20.1");
  EXPECT_EQ(Bus(), (Texts{"write 16 C007", "read 16 5 = 00011400FF"}));
}

TEST_F(GT_PIF, ReadsItsLogicsVersionWithACommandOfItsOwn) {
  EXPECT_EQ(Answer("NAM=EDMFPGA,VER"), "PIF,NAM=EDMFPGA,VER=1.0.0.1");
  EXPECT_EQ(Bus(), (Texts{"write 16 C009", "read 16 5 = 0001000001"}));
}

TEST_F(GT_PIF, HasNoChecksumOfTheLogicAndIgnoresTheQuestion) {
  EXPECT_EQ(Answer("NAM=EDMFPGA,SUM"), "PIF,NAM=EDMFPGA");
  EXPECT_EQ(Bus(), Texts{});
  EXPECT_EQ(Answer("NAM=EDMFPGA,SUM,VER"), "PIF,NAM=EDMFPGA,VER=1.0.0.1");
}

TEST_F(GT_PIF, ReadsThreeBytesFromADistanceMeterOfTypeOne) {
  EXPECT_EQ(VnsVersion(0x03, 0x92), "PIF,NAM=EDM,VER=R1.2.03");
  EXPECT_EQ(Bus(), (Texts{"write 16 C007", "read 16 3 = 000392"}));
  EXPECT_EQ(VnsVersion(0x00, 0x00), "PIF,NAM=EDM,VER=0.0.00");
  EXPECT_EQ(VnsVersion(0x0C, 0x7F), "PIF,NAM=EDM,VER=7.15.12");
  EXPECT_EQ(VnsVersion(0xFF, 0x80), "PIF,NAM=EDM,VER=R0.0.255");
}

TEST_F(GT_PIF, ReadsTheLogicOfADistanceMeterOfTypeOneAlike) {
  service_.SetDistanceMeterType(1);
  service_.Sensors([](auto& sensors) { sensors.edm.fpga_version = {0x21, 0x15, 0, 0}; });
  EXPECT_EQ(Answer("NAM=EDMFPGA,VER"), "PIF,NAM=EDMFPGA,VER=1.5.33");
  EXPECT_EQ(Bus(), (Texts{"write 16 C009", "read 16 3 = 002115"}));
}

TEST_F(GT_PIF, TakesEveryOtherTypeAlike) {
  for (const std::uint8_t type : {0, 2, 255}) {
    service_.SetDistanceMeterType(type);
    EXPECT_EQ(Answer("NAM=EDM,VER"), "PIF,NAM=EDM,VER=4.3.2.1");
  }
}

TEST_F(GT_PIF, AnswersInTimeTheChecksumOfTypeOneWithoutATransfer) {
  service_.SetDistanceMeterType(1);
  const double time = MillisecondsOf([&] { EXPECT_EQ(Answer("NAM=EDM,SUM"), "PIF,NAM=EDM,SUM=0000"); });
  EXPECT_LE(time, 100);
  EXPECT_EQ(Bus(), Texts{});
}

TEST_F(GT_PIF, GivesTheDistanceMeterInTimeThreeSecondsForItsChecksum) {
  service_.Sensors([](auto& sensors) { sensors.edm.checksum = 0x0AF1; });
  const double time = MillisecondsOf([&] { EXPECT_EQ(Answer("NAM=EDM,SUM"), "PIF,NAM=EDM,SUM=0AF1"); });
  EXPECT_GE(time, kThreeSeconds);
  EXPECT_LE(time, 3200);
  EXPECT_EQ(Bus(), (Texts{"write 16 C008", "read 16 3 = 00F10A"}));
}

// ---- Angle sensor board

TEST_F(GT_PIF, AnswersInTimeTheBoardsChecksumBeforeItsVersion) {
  service_.Sensors([](auto& sensors) {
    sensors.angle.checksum = 0xAB0C;
    sensors.angle.version = {255, 10, 0, 9};
  });
  const double time =
      MillisecondsOf([&] { EXPECT_EQ(Answer("NAM=ANGLE,VER,SUM"), "PIF,NAM=ANGLE,SUM=AB0C,VER=255.10.0.9"); });
  EXPECT_GE(time, kThreeSeconds);
  EXPECT_LE(time, 3200);
  EXPECT_EQ(Bus(), (Texts{"write 10 0002", "read 10 3 = 00AB0C", "write 10 0001", "read 10 5 = 00FF0A0009"}));
}

// ---- Focus drive

TEST_F(GT_PIF, AsksTheFocusDriveForBoth) {
  service_.Sensors([](auto& sensors) { sensors.focus.checksum = 0x0AF1; });
  EXPECT_EQ(Answer("NAM=FOCUS,VER,SUM"), "PIF,NAM=FOCUS,SUM=0AF1,VER=1.2.3.4");
  EXPECT_EQ(Bus(), (Texts{"write 38 C008", "read 38 3 = 00F10A", "write 38 C007", "read 38 5 = 0001020304"}));
}

TEST_F(GT_PIF, FailsWhenTheFocusDriveTellsAnError) {
  service_.Sensors([](auto& sensors) { sensors.focus.status = 1; });
  EXPECT_EQ(Answer("NAM=FOCUS,VER"), "ER_FAL");
  EXPECT_EQ(Bus(), (Texts{"write 38 C007", "read 38 5 = 0101020304"}));
  EXPECT_EQ(Answer("NAM=FOCUS,SUM,VER"), "ER_FAL");
  EXPECT_EQ(Bus(), (Texts{"write 38 C008", "read 38 3 = 013412"})) << "the version is not asked for any more";
  EXPECT_EQ(Answer("NAM=FOCUS"), "PIF,NAM=FOCUS");
}

// ---- Failed transfers

TEST_F(GT_PIF, AnswersNoReplyWhenReadingFails) {
  for (const char* fields : {"NAM=EDM,VER", "NAM=EDMFPGA,VER", "NAM=ANGLE,VER", "NAM=FOCUS,VER", "NAM=FOCUS,SUM"}) {
    FailDevice("I2C5:", "read", 1);
    EXPECT_EQ(Answer(fields), "ER_FAL") << fields;
    EXPECT_EQ(Bus().size(), 2u) << fields;
    host::ClearFaults();
  }
}

TEST_F(GT_PIF, AnswersNoReplyWhenOnlyTheVersionFails) {
  FailDevice("I2C5:", "read", 1, 2);
  EXPECT_EQ(Answer("NAM=FOCUS,SUM,VER"), "ER_FAL");
  EXPECT_EQ(Bus().size(), 4u);
}

TEST_F(GT_PIF, GivesUpInTimeAfterFortyAttemptsToWrite) {
  service_.Sensors([](auto& sensors) { sensors.edm.present = false; });
  const double time = MillisecondsOf([&] { EXPECT_EQ(Answer("NAM=EDM,VER"), "ER_FAL"); });
  EXPECT_GE(time, 1 + 39 * 50);
  EXPECT_LE(time, 1 + 39 * 50 + 300);
  EXPECT_EQ(Bus(), Texts(40, "write 16 C007 fails"));
}

TEST_F(GT_PIF, GoesOnWhenALaterAttemptSucceeds) {
  FailDevice("I2C5:", "write", 2);
  EXPECT_EQ(Answer("NAM=ANGLE,VER"), "PIF,NAM=ANGLE,VER=1.2.3.4");
  EXPECT_EQ(Bus(), (Texts{"write 10 0001 fails", "write 10 0001 fails", "write 10 0001", "read 10 5 = 0001020304"}));
}

// ---- Files

TEST_F(GT_PIF, TellsTheProductVersionOfAFileUnderAnyOtherName) {
  MakeModule("/Windows/tool.exe", {{u"FileVersion", u"1.2.0.15"}, {u"ProductVersion", u"3, 4"}});
  EXPECT_EQ(Answer("NAM=tool,PTH=/Windows/tool.exe"), "PIF,NAM=tool,PVR=3.4");
  EXPECT_EQ(Answer("NAM=tool,PTH=\\\\Windows\\\\TOOL.EXE,VER,SUM"), "PIF,NAM=tool,PVR=3.4");
}

TEST_F(GT_PIF, TellsTheFileVersionWhereTheProductVersionIsMissing) {
  MakeModule("/tool.exe", {{u"FileVersion", u"1.2.0.15"}});
  EXPECT_EQ(Answer("NAM=tool,PTH=/tool.exe"), "PIF,NAM=tool,PVR=1.2.0.15");
}

TEST_F(GT_PIF, RepeatsTheNameWithoutEscapes) {
  MakeModule("/tool.exe", {{u"ProductVersion", u"1\\2"}});
  EXPECT_EQ(Answer("NAM=a\\,b\\\\c d,PTH=/tool.exe"), "PIF,NAM=a,b\\c d,PVR=1\\2");
  EXPECT_EQ(Answer("NAM,PTH=/tool.exe"), "PIF,NAM=,PVR=1\\2");
}

TEST_F(GT_PIF, KnowsItsComponentsByTheirExactNames) {
  MakeModule("/tool.exe", {{u"ProductVersion", u"5"}});
  for (const char* name : {"os", "Edm", "EDM2", "ED", "angle", "FOCUS."}) {
    EXPECT_EQ(Answer(std::string("NAM=") + name + ",VER"), "ER_PRM") << name;
    EXPECT_EQ(Answer(std::string("NAM=") + name + ",PTH=/tool.exe"), std::string("PIF,NAM=") + name + ",PVR=5");
    EXPECT_EQ(Bus(), Texts{});
  }
  EXPECT_EQ(Answer("NAM=FOCUS,PTH=/tool.exe"), "PIF,NAM=FOCUS") << "a component's path is not looked at";
}

TEST_F(GT_PIF, RefusesAFileWithoutAVersion) {
  MakeModule("/empty.exe", {{u"CompanyName", u"A"}});
  service_.MakeFile("/text", "no module");
  service_.MakeFolder("/folder");
  for (const char* path : {"/empty.exe", "/text", "/folder", "/none.exe", "/../tool.exe"}) {
    EXPECT_EQ(Answer(std::string("NAM=tool,PTH=") + path), "ER_PRM") << path;
  }
  EXPECT_EQ(Answer("NAM=tool"), "ER_PRM");
  EXPECT_EQ(Answer("NAM=tool,PTH"), "ER_PRM");
}

}  // namespace
}  // namespace qxtest
