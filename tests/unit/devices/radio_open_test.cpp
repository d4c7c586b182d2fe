// Opening a service on "COMBT:": the radio is switched on where it is not, and its port is waited for.
#include <QXCommMgr.h>
#include <gtest/gtest.h>

#include <string>

#include "common/ports/ports.h"
#include "instrument/radio.h"
#include "link/bluetooth_radio.h"
#include "support/test_application.h"
#include "unit/devices/device_service.h"

namespace qxtest {
namespace {

using host::instrument::Radio;

constexpr char kReadMode[] = "2";
constexpr char kSwitchOn[] = "1 2";
constexpr char kRefused[] = "1 2 fails";
constexpr char kOpen[] = "open";
constexpr char kNotThere[] = "open fails";

/// As "2" (the mode is read), "1 2" (mode 2 is set), "open" (of the Bluetooth port); with " fails" when it failed.
std::string CallText(const host::CallRecord& record) {
  const auto number = [](const host::CallValue& value) { return std::get<std::int64_t>(value); };
  if (record.library == "COREDLL") return number(record.result) == -1 ? kNotThere : kOpen;
  std::string text = std::to_string(number(record.call));
  for (const host::CallValue& value : record.args) text += " " + std::to_string(number(value));
  return number(record.result) == 0 ? text : text + " fails";
}

bool OpensBluetooth(const host::CallRecord& record) {
  return record.call == host::CallValue("CreateFileW") && record.args.at(0) == host::CallValue("COMBT:");
}

class OpeningBluetooth : public testing::Test {
 protected:
  OpeningBluetooth() : bluetooth_(host::AttachPty("COMBT:")) {}
  ~OpeningBluetooth() override {
    if (handle_ != 0) {
      EXPECT_EQ(QCMCloseComm(handle_), QCM_OK);
    }
  }
  /// Milliseconds that opening takes.
  double TimeOfOpening() {
    return MillisecondsOf([this] { handle_ = QCMOpenComm(u"combt"); });
  }
  bool Open() {
    TimeOfOpening();
    return handle_ != 0;
  }
  /// What was done with the radio and its port.
  Texts Calls() const {
    Texts calls;
    for (const host::CallRecord& record : world_.Records()) {
      if (record.library == "BTHUTIL" || OpensBluetooth(record)) calls.push_back(CallText(record));
    }
    return calls;
  }
  bool Answers() { return bluetooth_.Exchange("GT_OMD") == ReplyFrame("OMD") + std::string(kAck); }
  static void FailRadio(std::int64_t ordinal) {
    host::Fault fault;
    fault.library = "BTHUTIL";
    fault.call = ordinal;
    fault.error = ERROR_GEN_FAILURE;
    host::AddFault(fault);
  }

  StandardDevices devices_;
  World world_;
  Controller bluetooth_;
  Radio& radio_ = Radio::Instance();
  QCM_HANDLE handle_ = 0;
};

TEST_F(OpeningBluetooth, LeavesARadioAloneThatIsOn) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(Calls(), (Texts{kReadMode, kOpen}));
  EXPECT_TRUE(Answers());
}

TEST_F(OpeningBluetooth, SwitchesTheRadioOnFromAnyOtherMode) {
  for (const std::uint32_t mode : {0u, 1u}) {
    radio_.SetMode(mode);
    world_.ForgetCalls();
    ASSERT_TRUE(Open());
    EXPECT_EQ(Calls(), (Texts{kReadMode, kSwitchOn, kOpen}));
    EXPECT_TRUE(Answers());
    EXPECT_EQ(QCMCloseComm(std::exchange(handle_, 0)), QCM_OK);
  }
}

TEST_F(OpeningBluetooth, SwitchesTheRadioOnWhenItsModeCannotBeRead) {
  FailRadio(2);
  ASSERT_TRUE(Open());
  EXPECT_EQ(Calls(), (Texts{"2 fails", kSwitchOn, kOpen}));
}

TEST_F(OpeningBluetooth, FailsWhenTheRadioCannotBeSwitchedOn) {
  radio_.SetMode(0);
  radio_.SetCanSwitch(false);
  EXPECT_FALSE(Open());
  EXPECT_EQ(Calls(), (Texts{kReadMode, kRefused}));
  try {
    qxcm::SwitchRadioOn();
    ADD_FAILURE() << "switched on";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "Bluetooth can not be activated.");
  }
}

TEST_F(OpeningBluetooth, OpensTheBusBeforeItTouchesTheRadio) {
  radio_.SetMode(0);
  FailDevice("I2C5:", "open", 1);
  EXPECT_FALSE(Open());
  EXPECT_EQ(Calls(), Texts{});
  EXPECT_EQ(radio_.mode(), 0u);
}

TEST_F(OpeningBluetooth, DoesNotLookForTheRadioOnTheCable) {
  radio_.SetMode(0);
  const QCM_HANDLE cable = QCMOpenComm(u"COMBT1");
  EXPECT_NE(cable, 0u);
  EXPECT_EQ(Calls(), Texts{});
  EXPECT_EQ(QCMCloseComm(cable), QCM_OK);
}

// ---- Waiting for the port

TEST_F(OpeningBluetooth, FailsInTimeAtOnceWhenTheRadioWasOn) {
  host::DetachPort("COMBT:");
  EXPECT_LE(TimeOfOpening(), 200);
  EXPECT_EQ(handle_, 0u);
  EXPECT_EQ(Calls(), (Texts{kReadMode, kNotThere}));
}

TEST_F(OpeningBluetooth, TriesInTimeEvery300MillisecondsUntilThePortIsUp) {
  radio_.SetMode(0);
  radio_.SetPortUpAfterMs(2000);
  const double time = TimeOfOpening();
  ASSERT_NE(handle_, 0u);
  EXPECT_GE(time, 7 * 300);
  EXPECT_LE(time, 7 * 300 + 250);
  Texts calls{kReadMode, kSwitchOn};
  calls.insert(calls.end(), 7, kNotThere);
  calls.emplace_back(kOpen);
  EXPECT_EQ(Calls(), calls);
  EXPECT_TRUE(Answers());
}

TEST_F(OpeningBluetooth, GivesUpInTimeAfterTenSeconds) {
  radio_.SetMode(1);
  radio_.SetPortUpAfterMs(60000);
  const double time = TimeOfOpening();
  EXPECT_EQ(handle_, 0u);
  EXPECT_GE(time, 10000);
  EXPECT_LE(time, 10500);
  const Texts calls = Calls();
  EXPECT_EQ(calls.at(1), kSwitchOn);
  EXPECT_GE(calls.size(), 2u + 33) << "an attempt every 300 ms, and the time each takes";
  EXPECT_LE(calls.size(), 2u + 35);
  for (std::size_t i = 2; i < calls.size(); ++i) EXPECT_EQ(calls[i], kNotThere);
  EXPECT_EQ(radio_.mode(), 2u) << "it stays on";
}

// ---- Afterwards

TEST_F(OpeningBluetooth, NeverSwitchesTheRadioOffAgain) {
  radio_.SetMode(0);
  ASSERT_TRUE(Open());
  EXPECT_EQ(QCMSuspendComm(handle_), QCM_OK);
  EXPECT_EQ(radio_.mode(), 2u);
  EXPECT_EQ(QCMCloseComm(std::exchange(handle_, 0)), QCM_OK);
  EXPECT_EQ(radio_.mode(), 2u);
  EXPECT_EQ(Calls(), (Texts{kReadMode, kSwitchOn, kOpen}));
}

TEST_F(OpeningBluetooth, IsDoneAgainByResumingWithoutTheRadio) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(QCMSuspendComm(handle_), QCM_OK);
  world_.ForgetCalls();
  EXPECT_EQ(QCMResumeComm(handle_), QCM_OK);
  EXPECT_EQ(Calls(), Texts{kOpen});
  EXPECT_TRUE(Answers());
}

TEST_F(OpeningBluetooth, IsTriedOnceByResumingInTimeWhenTheRadioHasGone) {
  ASSERT_TRUE(Open());
  EXPECT_EQ(QCMSuspendComm(handle_), QCM_OK);
  radio_.SetMode(0);
  world_.ForgetCalls();
  EXPECT_LE(MillisecondsOf([this] { EXPECT_EQ(QCMResumeComm(handle_), QCM_PORT_FAILED); }), 200);
  EXPECT_EQ(Calls(), Texts{kNotThere});
  EXPECT_EQ(radio_.mode(), 0u);
  radio_.SetMode(2);
  EXPECT_EQ(QCMResumeComm(handle_), QCM_OK);
  EXPECT_TRUE(Answers());
}

}  // namespace
}  // namespace qxtest
