// CM_I2C: what it takes, what goes over the bus, and what it answers.
#include <gtest/gtest.h>

#include <string>

#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

class CM_I2C : public testing::Test {
 protected:
  std::string Answer(const std::string& fields) { return service_.Answer("CM_I2C" + fields); }
  Texts Bus() const { return service_.Bus(); }
  /// The answer, which must have left the bus alone.
  std::string AnswerOffTheBus(const std::string& fields) {
    std::string answer = Answer(fields);
    EXPECT_EQ(Bus(), Texts{}) << fields;
    return answer;
  }
  DeviceService service_;
};

// ---- Transfers

TEST_F(CM_I2C, WritesThenReadsWithTheAddressInItsSevenBits) {
  EXPECT_EQ(Answer(",ADR=20,SDT=0001,RBT=5,WAT=1"), "I2C,STS=SCS,RDT=0001020304");
  EXPECT_EQ(Bus(), (Texts{"write 10 0001", "read 10 5 = 0001020304"}));
}

TEST_F(CM_I2C, OnlyWritesWhenNothingIsToBeRead) {
  EXPECT_EQ(Answer(",ADR=20,SDT=081101"), "I2C,STS=SCS");
  EXPECT_EQ(Bus(), Texts{"write 10 081101"});
  EXPECT_EQ(Answer(",ADR=20,SDT=081102,RBT=0,WAT=9"), "I2C,STS=SCS");
  EXPECT_EQ(service_.Sensors([](auto& sensors) { return sensors.angle.tilt_switch; }), 2);
}

TEST_F(CM_I2C, SendsTheAddressAloneWithoutBytesToSend) {
  EXPECT_EQ(Answer(",ADR=2C"), "I2C,STS=SCS");
  EXPECT_EQ(Bus(), Texts{"write 16"});
  EXPECT_EQ(Answer(",ADR=2C,SDT"), "I2C,STS=SCS");
  EXPECT_EQ(Bus(), Texts{"write 16"});
  EXPECT_EQ(Answer(",ADR=2C,RBT=2"), "I2C,STS=SCS,RDT=FFFF");
  EXPECT_EQ(Bus(), (Texts{"write 16", "read 16 2 = FFFF"}));
}

TEST_F(CM_I2C, MakesOneTransferWithTheTemperatureSensor) {
  EXPECT_EQ(Answer(",ADR=C0,SDT=a1B2,RBT=4,WAT=5000"), "I2C,STS=SCS,RDT=00962794");
  EXPECT_EQ(Bus(), Texts{"transfer 60 A1B2 4 = 00962794"});
}

TEST_F(CM_I2C, OnlyWritesToTheTemperatureSensorWhenNothingIsToBeRead) {
  EXPECT_EQ(Answer(",ADR=C0,SDT=01"), "I2C,STS=SCS");
  EXPECT_EQ(Bus(), Texts{"write 60 01"});
}

TEST_F(CM_I2C, ReadsFromTheTemperatureSensorWithNothingToSend) {
  EXPECT_EQ(Answer(",ADR=C0,RBT=2"), "I2C,STS=SCS,RDT=0096");
  EXPECT_EQ(Bus(), Texts{"read 60 2 = 0096"});
}

TEST_F(CM_I2C, AnswersItsReplyOnlyThenTheAck) {
  EXPECT_EQ(service_.line.Exchange("CM_I2C,ADR=C0"), ReplyFrame("I2C,STS=SCS") + std::string(kAck));
}

// ---- Fields

TEST_F(CM_I2C, WantsAnAddress) {
  EXPECT_EQ(AnswerOffTheBus(""), "ER_PRM");
  EXPECT_EQ(AnswerOffTheBus(",SDT=01,RBT=1"), "ER_PRM");
  EXPECT_EQ(AnswerOffTheBus(",adr=20"), "ER_PRM");
}

TEST_F(CM_I2C, TakesTheLowEightBitsOfAHexadecimalAddress) {
  for (const char* address : {"20", "0x20", "120", "7FFFFF20", "-E0", "20h", " 20"}) {
    EXPECT_EQ(Answer(std::string(",ADR=") + address), "I2C,STS=SCS") << address;
    EXPECT_EQ(Bus(), Texts{"write 10"}) << address;
  }
  Answer(",ADR=c0");
  EXPECT_EQ(Bus(), Texts{"write 60"});
  Answer(",ADR=FFFFFF20");
  EXPECT_EQ(Bus().at(0), "write 7F fails") << "more than 31 bits count as the largest number";
}

TEST_F(CM_I2C, TakesAnAddressThatIsNoNumberForZero) {
  EXPECT_EQ(Answer(",ADR=xyz"), "I2C,STS=ER_FAL");
  EXPECT_EQ(Bus().at(0), "write 00 fails");
  EXPECT_EQ(Answer(",ADR"), "I2C,STS=ER_FAL");
}

TEST_F(CM_I2C, RefusesBytesThatAreNoHexadecimalText) {
  for (const char* bytes : {"0", "012", "0G", "0x01", "00 11", "00ZZ"}) {
    EXPECT_EQ(AnswerOffTheBus(std::string(",ADR=20,SDT=") + bytes), "ER_PRM") << bytes;
  }
}

TEST_F(CM_I2C, ReadsUpTo504Bytes) {
  const std::string answer = Answer(",ADR=20,SDT=0001,RBT=504");
  EXPECT_EQ(answer.substr(0, 30), "I2C,STS=SCS,RDT=0001020304FFFF");
  EXPECT_EQ(answer.size(), std::string("I2C,STS=SCS,RDT=").size() + 2 * 504);
  EXPECT_EQ(Bus().size(), 2u);
}

TEST_F(CM_I2C, RefusesToReadMoreOrLessThanNothing) {
  for (const char* count : {"505", "506", "65536", "2147483647", "99999999999", "-1", "-504"}) {
    EXPECT_EQ(AnswerOffTheBus(std::string(",ADR=20,RBT=") + count), "ER_PRM") << count;
    EXPECT_EQ(AnswerOffTheBus(std::string(",ADR=C0,RBT=") + count), "ER_PRM") << count;
  }
}

TEST_F(CM_I2C, TakesACountWithoutDigitsForNone) {
  EXPECT_EQ(Answer(",ADR=20,RBT=x"), "I2C,STS=SCS");
  EXPECT_EQ(Answer(",ADR=20,RBT"), "I2C,STS=SCS");
  EXPECT_EQ(Answer(",ADR=20,SDT=0001,RBT=2 bytes"), "I2C,STS=SCS,RDT=0001");
}

TEST_F(CM_I2C, DoesNotWaitForANegativeTime) {
  EXPECT_EQ(Answer(",ADR=20,SDT=0001,RBT=1,WAT=-5"), "I2C,STS=SCS,RDT=00");
}

TEST_F(CM_I2C, IgnoresChannelAndOtherFields) {
  EXPECT_EQ(Answer(",CHN=2,ADR=20,XYZ=1,SDT=0001,RBT=1"), "I2C,STS=SCS,RDT=00");
  EXPECT_EQ(Answer(",CHN,ADR=20"), "I2C,STS=SCS");
}

TEST_F(CM_I2C, SendsLessThan1024BytesAddressIncluded) {
  const std::string most(2 * 1022, '0');
  EXPECT_EQ(Answer(",ADR=20,SDT=" + most), "I2C,STS=SCS");
  EXPECT_EQ(Bus(), Texts{"write 10 " + most});
  EXPECT_EQ(AnswerOffTheBus(",ADR=20,SDT=" + most + "00"), "I2C,STS=ER_FAL");
  EXPECT_EQ(AnswerOffTheBus(",ADR=C0,RBT=1,SDT=" + most + "00"), "I2C,STS=ER_FAL,RDT=");
}

// ---- Failures

TEST_F(CM_I2C, TriesToWriteFourTimes) {
  EXPECT_EQ(Answer(",ADR=44,SDT=0102,RBT=3"), "I2C,STS=ER_FAL,RDT=");
  EXPECT_EQ(Bus(), Texts(4, "write 22 0102 fails"));
}

TEST_F(CM_I2C, StopsAtTheFirstSuccess) {
  for (std::uint64_t failures = 0; failures < 4; ++failures) {
    if (failures != 0) FailDevice("I2C5:", "write", failures);
    EXPECT_EQ(Answer(",ADR=20,SDT=0001,RBT=1"), "I2C,STS=SCS,RDT=00");
    Texts calls(failures, "write 10 0001 fails");
    calls.insert(calls.end(), {"write 10 0001", "read 10 1 = 00"});
    EXPECT_EQ(Bus(), calls);
    host::ClearFaults();
  }
}

TEST_F(CM_I2C, ReadsOnlyOnce) {
  FailDevice("I2C5:", "read", 1);
  EXPECT_EQ(Answer(",ADR=20,SDT=0001,RBT=5"), "I2C,STS=ER_FAL,RDT=");
  EXPECT_EQ(Bus(), (Texts{"write 10 0001", "read 10 5 fails"}));
}

TEST_F(CM_I2C, TriesTheTemperatureSensorOnlyOnce) {
  service_.Sensors([](auto& sensors) { sensors.temperature.present = false; });
  EXPECT_EQ(Answer(",ADR=C0,SDT=01,RBT=4"), "I2C,STS=ER_FAL,RDT=");
  EXPECT_EQ(Bus(), Texts{"transfer 60 01 4 fails"});
  EXPECT_EQ(Answer(",ADR=C0,SDT=01"), "I2C,STS=ER_FAL");
  EXPECT_EQ(Bus(), Texts{"write 60 01 fails"});
}

TEST_F(CM_I2C, WorksAgainAfterAFailure) {
  FailDevice("I2C5:", "write", 4);
  EXPECT_EQ(Answer(",ADR=20,SDT=0001"), "I2C,STS=ER_FAL");
  EXPECT_EQ(Answer(",ADR=20,SDT=0001"), "I2C,STS=SCS");
}

// ---- Time

TEST_F(CM_I2C, FailsInTimeAfterFourAttemptsAndTheirPauses) {
  const double time = MillisecondsOf([&] { Answer(",ADR=44,SDT=01"); });
  EXPECT_GE(time, 151 - 1);
  EXPECT_LE(time, 151 + 100);
}

TEST_F(CM_I2C, WaitsInTimeBetweenWriteAndRead) {
  const double waiting = MillisecondsOf([&] { Answer(",ADR=20,SDT=0001,RBT=1,WAT=200"); });
  EXPECT_GE(waiting, 200);
  EXPECT_LE(waiting, 300);
  EXPECT_LE(MillisecondsOf([&] { Answer(",ADR=20,SDT=0001,RBT=1"); }), 100) << "without a time there is no wait";
  EXPECT_LE(MillisecondsOf([&] { Answer(",ADR=20,SDT=0001,WAT=60000"); }), 100) << "nor when nothing is read";
  EXPECT_LE(MillisecondsOf([&] { Answer(",ADR=C0,SDT=01,RBT=1,WAT=60000"); }), 100) << "nor in one transfer";
}

}  // namespace
}  // namespace qxtest
