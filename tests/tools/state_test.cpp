// GET and PATCH /state, POST /reset.
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

class StateTest : public SimulatorTest {
 protected:
  /// What the library holds once its key thread, which starts by itself, is up.
  Json ResourcesAtRest() const {
    Ask("POST", "/keys", {{"code", 1}});
    return State()["resources"];
  }
  /// Without what changes by itself.
  Json Settings() const {
    Json state = State();
    state.erase("resources");
    state["event_window"].erase("previous_called");
    state["clock"].erase("local");
    return state;
  }
};

TEST_F(StateTest, ShowsAnOpenServiceAtRest) {
  const Json state = State();
  EXPECT_EQ(state["event_window"]["message"], 1024);
  EXPECT_EQ(state["event_window"]["exists"], true);
  EXPECT_EQ(state["event_window"]["subclassed"], true);
  EXPECT_TRUE(state["event_window"]["previous_called"].is_number_unsigned());
  EXPECT_EQ(state["ports"], (Json{{"shared", false}}));
  EXPECT_EQ(state["system"]["power"], "on");
  EXPECT_EQ(state["resources"]["services"], 1);
  EXPECT_EQ(state["resources"]["queued_commands"], 0);
}

TEST_F(StateTest, CountsWhatTheLibraryHolds) {
  const Json open = State()["resources"];
  EXPECT_GE(open["threads"], 4);
  EXPECT_GT(open["handles"], 0);
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  const Json closed = State()["resources"];
  EXPECT_EQ(closed["threads"], 0);
  EXPECT_EQ(closed["services"], 0);
  EXPECT_LT(closed["handles"], open["handles"]);
}

TEST_F(StateTest, HandlesAndThreadsDoNotGrowFromOpenToOpen) {
  const Json open = ResourcesAtRest();
  for (int round = 0; round < 10; ++round) {
    EXPECT_EQ(Service("QCMCloseComm"), 0);
    EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  }
  EXPECT_EQ(ResourcesAtRest(), open);
}

TEST_F(StateTest, PatchAnswersTheWholeNewState) {
  const Json state = Ask("PATCH", "/state", {{"ports", {{"shared", true}}}});
  EXPECT_EQ(state["ports"]["shared"], true);
  EXPECT_EQ(State()["ports"]["shared"], true);
}

TEST_F(StateTest, ARefusedPatchChangesNothing) {
  const Json before = Settings();
  const Json good = {{"ports", {{"shared", true}}}, {"event_window", {{"message", 2000}}}};
  const Json bad[] = {{{"nonsense", 1}},
                      {{"ports", {{"nonsense", true}}}},
                      {{"ports", {{"shared", 1}}}},
                      {{"ports", {{"shared", nullptr}}}},
                      {{"ports", nullptr}},
                      {{"ports", true}},
                      {{"event_window", {{"message", "1025"}}}},
                      {{"event_window", {{"message", 1025.5}}}},
                      {{"event_window", {{"message", -1}}}},
                      {{"event_window", {{"message", 4294967296}}}},
                      {{"event_window", {{"message", 18446744073709551615u}}}},
                      {{"event_window", {{"exists", 0}}}},
                      {{"system", {{"power", "sideways"}}}}};
  for (Json patch : bad) {
    Json both = good;
    both.update(patch, true);
    const qxsim::Response response = Call("PATCH", "/state", both);
    EXPECT_EQ(response.status, 400) << both;
    EXPECT_TRUE(Json::parse(response.body)["error"].is_string());
    EXPECT_EQ(Settings(), before) << both;
  }
}

TEST_F(StateTest, ReadOnlyMembersAreRefused) {
  for (const char* member : {"subclassed", "previous_called"}) {
    EXPECT_EQ(Call("PATCH", "/state", {{"event_window", {{member, State()["event_window"][member]}}}}).status, 400);
  }
  for (const char* member : {"handles", "threads", "services", "queued_commands"}) {
    EXPECT_EQ(Call("PATCH", "/state", {{"resources", {{member, 0}}}}).status, 400) << member;
  }
}

TEST_F(StateTest, AnEmptyPatchIsNoChange) {
  const Json before = Settings();
  Ask("PATCH", "/state", Json::object());
  Ask("PATCH", "/state", {{"ports", Json::object()}});
  EXPECT_EQ(Settings(), before);
}

TEST_F(StateTest, ResetBringsTheDefaultsBackAndKeepsServicesOpen) {
  Ask("PATCH", "/state", {{"ports", {{"shared", true}}}, {"event_window", {{"message", 2000}, {"exists", false}}}});
  const Json state = Ask("POST", "/reset");
  EXPECT_EQ(state["ports"]["shared"], false);
  EXPECT_EQ(state["event_window"]["message"], 1024);
  EXPECT_EQ(state["event_window"]["exists"], true);
  EXPECT_EQ(state["resources"]["services"], 1);
}

TEST_F(StateTest, PowerFollowsTheVirtualInstrument) {
  EXPECT_EQ(Ask("PATCH", "/state", {{"system", {{"power", "suspend"}}}})["system"]["power"], "suspend");
  EXPECT_EQ(Ask("POST", "/reset")["system"]["power"], "on");
}

TEST_F(StateTest, SharedPortsCanBeOpenedTwice) {
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  Ask("PATCH", "/state", {{"ports", {{"shared", true}}}});
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_EQ(State()["resources"]["services"], 2);
}

TEST_F(StateTest, EventWindowCountsFromTheNextFirstOpen) {
  Ask("PATCH", "/state", {{"event_window", {{"exists", false}}}});
  EXPECT_EQ(State()["event_window"]["subclassed"], true);
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  EXPECT_EQ(State()["event_window"]["subclassed"], false);
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  Ask("PATCH", "/state", {{"event_window", {{"exists", true}}}});
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
}

TEST_F(StateTest, AMessageNumberBelow1024IsNoEventMessage) {
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  Ask("PATCH", "/state", {{"event_window", {{"message", 1023}}}});
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  Ask("PATCH", "/state", {{"event_window", {{"message", 1025}}}});
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
}

}  // namespace
}  // namespace qxtest
