// /mutexes, /events, /keys and /shared: the instrument's other processes and its system library.
#include <nlohmann/json.hpp>

#include "common/kernel/handles.h"
#include "common/kernel/shared_memory.h"
#include "support/controller.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

using wire::Controller;
using wire::Received;

constexpr const char* kKeyMutex = "KORAX-HALVERN.RZM.CommKeyDataMtx";

class WorldTest : public SimulatorTest {
 protected:
  std::string Holder(const std::string& name) const {
    const Json list = Ask("GET", "/mutexes")["mutexes"];
    for (const Json& mutex : list) {
      if (mutex["name"] == name) return mutex["holder"];
    }
    return "unknown";
  }
};

TEST_F(WorldTest, AMutexIsTakenAndReleasedAsAnotherProcessWould) {
  EXPECT_EQ(Holder("A.Mutex"), "unknown");
  Ask("POST", "/mutexes", {{"name", "A.Mutex"}, {"held", true}});
  Ask("POST", "/mutexes", {{"name", "A.Mutex"}, {"held", true}});
  EXPECT_EQ(Holder("A.Mutex"), "other");
  Ask("POST", "/mutexes", {{"name", "A.Mutex"}, {"held", false}});
  EXPECT_NE(Holder("A.Mutex"), "other");
  Ask("POST", "/mutexes", {{"name", "A.Mutex"}, {"held", false}});
}

TEST_F(WorldTest, MutexesOfTheLibraryAreListed) {
  EXPECT_TRUE(Eventually([this] { return Holder(kKeyMutex) == "free"; }));
}

TEST_F(WorldTest, WrongMutexRequestsAreRefused) {
  EXPECT_EQ(Call("POST", "/mutexes", {{"name", "A"}}).status, 400);
  EXPECT_EQ(Call("POST", "/mutexes", {{"held", true}}).status, 400);
  EXPECT_EQ(Call("POST", "/mutexes", {{"name", ""}, {"held", true}}).status, 400);
  EXPECT_EQ(Call("POST", "/mutexes", {{"name", "A"}, {"held", "yes"}}).status, 400);
  EXPECT_EQ(Call("POST", "/mutexes", {{"name", std::string(300, 'x')}, {"held", true}}).status, 400);
}

TEST_F(WorldTest, AKeyIsReportedToTheControllerThatAskedForKeys) {
  Controller controller(simulator_->port_path());
  ASSERT_TRUE(controller.Command("ST_OMD,KEY=1").acknowledged);
  Ask("POST", "/keys", {{"code", 10}});
  EXPECT_EQ(controller.Read(std::chrono::seconds(10)), (Received{Received::Kind::kMessage, "MDT,KEY=0A"}));
}

TEST_F(WorldTest, SeveralKeysBeforeTheEventAreOneAnnouncementOfTheLast) {
  Controller controller(simulator_->port_path());
  ASSERT_TRUE(controller.Command("ST_OMD,KEY=1").acknowledged);
  Ask("POST", "/keys", {{"codes", {1, 2, 4294967295}}});
  EXPECT_EQ(controller.Read(std::chrono::seconds(10)), (Received{Received::Kind::kMessage, "MDT,KEY=FFFFFFFF"}));
  EXPECT_TRUE(controller.Command("GT_OMD,KEY").messages.empty());
}

TEST_F(WorldTest, AKeyWithNoServiceOpenWaitsForTheNextOne) {
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  Ask("POST", "/keys", {{"code", 5}});
  EXPECT_NE(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  const Json shared = Ask("GET", "/shared?name=KORAX-HALVERN.RZM.CommKeyData");
  EXPECT_EQ(shared["bytes"], "05000000");
}

TEST_F(WorldTest, KeysWaitForTheBlocksMutex) {
  Ask("POST", "/mutexes", {{"name", kKeyMutex}, {"held", true}});
  Controller controller(simulator_->port_path());
  ASSERT_TRUE(controller.Command("ST_OMD,KEY=1").acknowledged);
  std::thread keys([this] { Ask("POST", "/keys", {{"code", 7}}); });
  EXPECT_FALSE(controller.Read(std::chrono::milliseconds(100)));
  Ask("POST", "/mutexes", {{"name", kKeyMutex}, {"held", false}});
  EXPECT_EQ(controller.Read(std::chrono::seconds(10)), (Received{Received::Kind::kMessage, "MDT,KEY=07"}));
  keys.join();
}

TEST_F(WorldTest, WrongKeysAreRefused) {
  const Json wrong[] = {Json::object(),
                        {{"code", -1}},
                        {{"code", 4294967296}},
                        {{"codes", Json::array()}},
                        {{"codes", {1, "2"}}},
                        {{"codes", 7}},
                        {{"code", 1.5}},
                        {{"code", 1}, {"codes", {2}}},
                        {{"codes", Json::array({1, nullptr})}}};
  for (const Json& body : wrong) EXPECT_EQ(Call("POST", "/keys", body).status, 400) << body;
}

TEST_F(WorldTest, AnEventReachesTheWindowsOwnProcedureThroughTheLibrary) {
  const auto called = [this] { return State()["event_window"]["previous_called"].get<int>(); };
  const int before = called();
  EXPECT_EQ(Ask("POST", "/events", {{"mask", 1}})["delivered"], true);
  EXPECT_GT(called(), before);
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  const int without = called();
  EXPECT_EQ(Ask("POST", "/events", {{"mask", 1}})["delivered"], true);
  EXPECT_EQ(called(), without);
}

TEST_F(WorldTest, AnEventBeforeAnyWindowWasHandedOutIsLost) {
  EXPECT_EQ(Service("QCMCloseComm"), 0);
  Ask("PATCH", "/state", {{"event_window", {{"exists", false}}}});
  EXPECT_EQ(Service("QCMOpenComm", {{"port", "COM5:"}}), 0);
  EXPECT_EQ(Ask("POST", "/events", {{"mask", 1}})["delivered"], false);
  EXPECT_EQ(Call("POST", "/events").status, 400);
  EXPECT_EQ(Call("POST", "/events", {{"mask", 4294967296}}).status, 400);
}

TEST_F(WorldTest, ASharedBlockIsShownWithItsSizeAndBytes) {
  const HANDLE block = host::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 5, TEXT("A.Block"));
  auto* bytes = static_cast<std::uint8_t*>(host::MapViewOfFile(block, FILE_MAP_ALL_ACCESS, 0, 0, 5));
  bytes[4] = 0xAB;
  const Json shown = Ask("GET", "/shared?name=A.Block");
  EXPECT_EQ(shown["size"], 5);
  EXPECT_EQ(shown["bytes"], "00000000AB");
  host::UnmapViewOfFile(bytes);
  host::CloseHandle(block);
  EXPECT_EQ(Call("GET", "/shared?name=A.Block").status, 404);
}

TEST_F(WorldTest, ABlockNeedsAName) {
  EXPECT_EQ(Call("GET", "/shared").status, 400);
  EXPECT_EQ(Call("GET", "/shared?name=").status, 400);
  EXPECT_EQ(Call("GET", "/shared?name=%zz").status, 400);
  EXPECT_EQ(Call("GET", "/shared?name=No%20such").status, 404);
}

}  // namespace
}  // namespace qxtest
