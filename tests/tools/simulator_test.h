// A simulator in the test's own process, asked without HTTP.
#ifndef QXTEST_TOOLS_SIMULATOR_TEST_H
#define QXTEST_TOOLS_SIMULATOR_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "qxsim/simulator.h"
#include "support/process.h"

namespace qxtest {

using Json = nlohmann::json;

class SimulatorTest : public testing::Test {
 protected:
  SimulatorTest() {
    options_.ephemeral = true;
    options_.still = true;
    options_.link = folder_ / "line";
    options_.http.reset();
    Start();
  }

  void Start() { simulator_ = std::make_unique<qxsim::Simulator>(options_); }

  qxsim::Response Call(const std::string& method, const std::string& path, const Json& body = Json::object()) const {
    return simulator_->Handle(method, "/api/v1" + path, method == "GET" ? "" : body.dump());
  }
  /// The answer's body; the status must be 200.
  Json Ask(const std::string& method, const std::string& path, const Json& body = Json::object()) const {
    const qxsim::Response response = Call(method, path, body);
    EXPECT_EQ(response.status, 200) << method << " " << path << ": " << response.body;
    return Json::parse(response.body);
  }
  Json State() const { return Ask("GET", "/state"); }
  /// The result of an export.
  std::int64_t Service(const std::string& call, const Json& args = Json::object()) const {
    return Ask("POST", "/service", {{"call", call}, {"args", args}})["result"];
  }
  unsigned MakeWindow(const Json& plan = Json::object()) const { return Ask("POST", "/windows", plan)["window"]; }
  HWND Window(unsigned number) const { return simulator_->application().Find(number); }

  TemporaryFolder folder_;
  qxsim::Options options_;
  std::unique_ptr<qxsim::Simulator> simulator_;
};

/// Waits until the condition holds; false when it does not within 10 seconds.
bool Eventually(const std::function<bool()>& condition);

}  // namespace qxtest

#endif
