// The measuring side of the state document, on a whole simulator whose service is open.
#include <vector>

#include "instrument/angles.h"
#include "support/controller.h"
#include "tools/simulator_test.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {
namespace {

using wire::Received;

class MeasuringSections : public SimulatorTest {
 protected:
  MeasuringSections() {
    simulator_.reset();
    options_.still = true;
    Start();
    controller_ = std::make_unique<wire::Controller>(simulator_->port_path());
  }

  /// The only reply to a command, or "ok".
  std::string Answer(const std::string& command) {
    const wire::Answer answer = controller_->Command(command);
    EXPECT_TRUE(answer.acknowledged) << command;
    return answer.replies.empty() ? "ok" : answer.replies.front();
  }
  std::string NextMessage() {
    const auto received = controller_->Read(std::chrono::seconds(10));
    return received && received->kind == Received::Kind::kMessage ? received->text : "none";
  }
  /// The state but what changes by itself.
  Json Settled() const {
    Json state = State();
    state.erase("resources");
    state["clock"].erase("local");
    return state;
  }
  bool Refuses(const Json& patch) const { return Call("PATCH", "/state", patch).status == 400; }

  std::unique_ptr<wire::Controller> controller_;
};

TEST_F(MeasuringSections, StandAtTheirDefaults) {
  const Json state = State();
  EXPECT_EQ(state["angles"], (Json{{"HAF", 0.0}, {"VAF", 0.0}, {"HAR", 0.0}, {"VAR", 0.0}}));
  EXPECT_EQ(state["tilt"], (Json{{"XTL", 0.0}, {"YTL", 0.0}}));
  EXPECT_EQ(state["distance"], (Json{{"slope", 10.0}, {"valid", false}, {"takes_ms", 300}}));
  EXPECT_EQ(state["measurement"], (Json{{"running", false}, {"mode", 1}, {"target", 0}}));
  EXPECT_EQ(state["switches"], (Json{0, 0, 0, 0}));
  EXPECT_EQ(state["focus"], (Json{{"state", 0},
                                  {"position", 0},
                                  {"distance", 15000},
                                  {"manual", 0},
                                  {"auto", 0},
                                  {"event", 0},
                                  {"owner", 0},
                                  {"answers", "success"},
                                  {"takes_ms", 200}}));
}

TEST_F(MeasuringSections, PatchOfAnglesIsTheAngleEvent) {
  Answer("ST_OMD,ANG=11,TLT=1");
  Ask("PATCH", "/state", {{"angles", {{"HAF", Degrees(10)}}}});
  EXPECT_EQ(NextMessage(), "MDT,HAF=10.00000");
  EXPECT_EQ(Answer("GT_MDT,HAF,VAF"), "MDT,HAF=10.00000,VAF=0.00000") << "the other stays";
}

TEST_F(MeasuringSections, PatchOfSeveralAnglesIsOneEvent) {
  Answer("ST_OMD,ANG=21");
  Ask("PATCH", "/state", {{"angles", {{"VAR", Degrees(2)}, {"HAR", Degrees(1)}}}});
  EXPECT_EQ(NextMessage(), "MDT,HAR=1.00000,VAR=2.00000");
}

TEST_F(MeasuringSections, PatchOfTiltIsTheTiltEvent) {
  Answer("ST_OMD,ANG=1,TLT=1");
  Ask("PATCH", "/state", {{"tilt", {{"YTL", Tenths(12)}}}});
  EXPECT_EQ(NextMessage(), "MDT,YTL=0.00012");
}

TEST_F(MeasuringSections, PatchAnswersWhenTheEventHasBeenHandled) {
  for (int turn = 1; turn <= 50; ++turn) {
    Ask("PATCH", "/state", {{"angles", {{"HAF", Degrees(turn)}}}});
    ASSERT_EQ(Answer("GT_MDT,HAF"), "MDT,HAF=" + std::to_string(turn) + ".00000");
  }
}

TEST_F(MeasuringSections, ADistanceThatBecomesValidWhileMeasuringIsReady) {
  Ask("PATCH", "/state", {{"distance", {{"slope", 33.25}, {"takes_ms", 3600000}}}});
  Answer("ST_OMD,DST=1");
  Answer("MR_DST,MOD=F,TGT=N,REP=1");
  EXPECT_EQ(State()["measurement"], (Json{{"running", true}, {"mode", 3}, {"target", 1}}));
  Ask("PATCH", "/state", {{"distance", {{"valid", true}}}});
  EXPECT_EQ(NextMessage(), "MDT,SDS=33.2500");
}

TEST_F(MeasuringSections, AMeasurementBecomesReadyByItselfAndEndsAfterASingleShot) {
  Ask("PATCH", "/state", {{"distance", {{"takes_ms", 5}}}});
  Answer("ST_OMD,DST=11");
  controller_->Send(wire::CommandFrame("MR_DST,REP=0"));
  std::vector<Received::Kind> kinds;
  for (int i = 0; i < 2; ++i) kinds.push_back(controller_->Read(std::chrono::seconds(10))->kind);
  EXPECT_EQ(kinds, (std::vector<Received::Kind>{Received::Kind::kAcknowledged, Received::Kind::kMessage}));
  EXPECT_TRUE(WaitUntil([this] { return State()["measurement"]["running"] == false; }));
  EXPECT_EQ(State()["distance"]["valid"], true);
}

TEST_F(MeasuringSections, SwitchesAreAListByNumber) {
  Answer("ST_HSW,RTL=5,LGD=6,LPT=7,LPL=-8");
  EXPECT_EQ(State()["switches"], (Json{5, 6, 7, -8}));
  Ask("PATCH", "/state", {{"switches", {1, 2, 3, 4}}});
  EXPECT_EQ(Answer("GT_HSW,LGD,RTL,LPT,LPL"), "HSW,LGD=2,RTL=1,LPT=3,LPL=4");
}

TEST_F(MeasuringSections, TheFocusBlockIsShownAndSet) {
  Ask("PATCH", "/state", {{"focus", {{"position", -3}, {"distance", 20001}, {"auto", 1}, {"state", 4}}}});
  EXPECT_EQ(Answer("GT_FOS,AFO,MFO,CPS,DPS"), "FOS,AFO=0,MFO=0,CPS=-3,DPS=2.0001");
  Ask("PATCH", "/state", {{"focus", {{"manual", 1}}}});
  EXPECT_EQ(Answer("GT_FOS,MFO"), "FOS,MFO=1");
}

TEST_F(MeasuringSections, AJobOwnsTheFocusBlockUntilTheSideSignals) {
  Ask("PATCH", "/state", {{"focus", {{"answers", "silence"}, {"takes_ms", 0}}}});
  Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([this] { return State()["focus"]["event"] != 0; }));
  EXPECT_TRUE(WaitUntil([this] { return Call("POST", "/focus", {{"failed", true}}).status == 200; }));
  EXPECT_EQ(NextMessage(), "FOS,AFO=ER_FAL");
  EXPECT_EQ(State()["focus"]["event"], 0);
}

TEST_F(MeasuringSections, RefuseWhatIsNoValueOfTheirs) {
  const Json before = Settled();
  const Json bad[] = {{{"angles", {{"HAF", "1"}}}},
                      {{"angles", {{"HAN", 1}}}},
                      {{"angles", {{"HAF", nullptr}}}},
                      {{"tilt", {{"XTL", true}}}},
                      {{"tilt", 1}},
                      {{"distance", {{"slope", "10"}}}},
                      {{"distance", {{"takes_ms", -1}}}},
                      {{"distance", {{"takes_ms", 1.5}}}},
                      {{"distance", {{"valid", 1}}}},
                      {{"measurement", {{"running", true}}}},
                      {{"measurement", {{"mode", 2}}}},
                      {{"switches", Json::array({1, 2, 3})}},
                      {{"switches", {1, 2, 3, "4"}}},
                      {{"switches", {1, 2, 3, 4.5}}},
                      {{"switches", {1, 2, 3, 4, 5}}},
                      {{"switches", {1, 2, 3, 4294967296}}},
                      {{"focus", {{"answers", "perhaps"}}}},
                      {{"focus", {{"manual", 256}}}},
                      {{"focus", {{"position", 2147483648}}}},
                      {{"focus", {{"distance", -1}}}},
                      {{"focus", {{"takes_ms", "5"}}}}};
  for (const Json& patch : bad) EXPECT_TRUE(Refuses(patch)) << patch;
  EXPECT_EQ(Settled(), before);
}

TEST_F(MeasuringSections, AreResetTogether) {
  const Json defaults = State();
  Ask("PATCH", "/state",
      {{"angles", {{"HAF", 1}}},
       {"tilt", {{"XTL", 1}}},
       {"switches", {1, 2, 3, 4}},
       {"distance", {{"slope", 5}, {"valid", true}, {"takes_ms", 0}}},
       {"focus", {{"position", 5}, {"answers", "failure"}, {"takes_ms", 9}}}});
  Answer("ST_OMD,ANG=11");
  const Json state = Ask("POST", "/reset");
  for (const char* section : {"angles", "tilt", "distance", "measurement", "switches", "focus"}) {
    EXPECT_EQ(state[section], defaults[section]) << section;
  }
  EXPECT_EQ(NextMessage(), "MDT,HAF=0.00000") << "the controller hears of it";
}

}  // namespace
}  // namespace qxtest
