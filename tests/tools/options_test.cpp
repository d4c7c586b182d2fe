#include "qxsim/options.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/qxsim_process.h"

namespace qxtest {
namespace {

struct Parsed {
  std::optional<int> status;
  qxsim::Options options;
  std::string out;
  std::string err;
};

Parsed Parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "qxsim");
  Parsed parsed;
  std::ostringstream out;
  std::ostringstream err;
  parsed.status = qxsim::ParseOptions(static_cast<int>(arguments.size()), arguments.data(), &parsed.options, out, err);
  parsed.out = out.str();
  parsed.err = err.str();
  return parsed;
}

TEST(OptionsTest, DefaultsAreTheDocumentedOnes) {
  const Parsed parsed = Parse({});
  ASSERT_FALSE(parsed.status) << parsed.err;
  EXPECT_EQ(parsed.options.port, "COM5:");
  EXPECT_EQ(parsed.options.link, "./qx-com5");
  EXPECT_EQ(parsed.options.http->address, "127.0.0.1");
  EXPECT_EQ(parsed.options.http->port, 8580);
  EXPECT_EQ(parsed.options.code_page, 1252u);
  EXPECT_EQ(parsed.options.pace, 0u);
  EXPECT_FALSE(parsed.options.ephemeral || parsed.options.still || parsed.options.http_anyone);
}

TEST(OptionsTest, EveryOptionIsTaken) {
  const Parsed parsed = Parse({"--port",     "COMBT:",        "--device",    "/dev/x",      "--link",
                               "l",          "--home",        "h",           "--ephemeral", "--http",
                               "0.0.0.0:81", "--http-anyone", "--still",     "--seed",      "18446744073709551615",
                               "--pace",     "115200",        "--code-page", "932",         "--trace",
                               "-"});
  ASSERT_FALSE(parsed.status) << parsed.err;
  EXPECT_EQ(parsed.options.port, "COMBT:");
  EXPECT_EQ(parsed.options.device, "/dev/x");
  EXPECT_EQ(parsed.options.home, "h");
  EXPECT_EQ(parsed.options.http->address, "0.0.0.0");
  EXPECT_EQ(parsed.options.seed, 18446744073709551615u);
  EXPECT_EQ(parsed.options.pace, 115200u);
  EXPECT_EQ(parsed.options.code_page, 932u);
  EXPECT_EQ(parsed.options.trace, "-");
  EXPECT_TRUE(parsed.options.ephemeral && parsed.options.still && parsed.options.http_anyone);
}

TEST(OptionsTest, PortNamesMayBeWrittenShort) {
  EXPECT_EQ(Parse({"--port", "combt"}).options.port, "COMBT:");
  EXPECT_EQ(Parse({"--port", "com5:"}).options.port, "COM5:");
}

TEST(OptionsTest, HttpAddressesAreNumericOrLocalhostOrOff) {
  EXPECT_EQ(Parse({"--http", "localhost:0"}).options.http->address, "127.0.0.1");
  EXPECT_EQ(Parse({"--http", "[::1]:9"}).options.http->address, "::1");
  EXPECT_FALSE(Parse({"--http", "off"}).options.http);
}

TEST(OptionsTest, WrongUsageIsOneLineAndStatus2) {
  const std::vector<std::vector<const char*>> wrong = {{"--port", "COM9:"},
                                                       {"--port", ""},
                                                       {"--http", "127.0.0.1"},
                                                       {"--http", "127.0.0.1:99999"},
                                                       {"--http", "example:80"},
                                                       {"--http", ":80"},
                                                       {"--http", "127.0.0.1:-1"},
                                                       {"--http", "127.0.0.1:"},
                                                       {"--http", "::1:80"},
                                                       {"--pace", "fast"},
                                                       {"--pace", "-1"},
                                                       {"--code-page", "850"},
                                                       {"--seed", "x"},
                                                       {"--nonsense"},
                                                       {"extra"},
                                                       {"--link"},
                                                       {"--link", ""},
                                                       {"--http", "0.0.0.0:0"},
                                                       {"--seed", "-3"},
                                                       {"--pace", "1e9"}};
  for (const auto& arguments : wrong) {
    const Parsed parsed = Parse(arguments);
    EXPECT_EQ(parsed.status, 2) << arguments.front() << " " << arguments.back();
    EXPECT_EQ(std::count(parsed.err.begin(), parsed.err.end(), '\n'), 1) << parsed.err;
    EXPECT_EQ(parsed.out, "");
  }
}

TEST(OptionsTest, TheProgramSaysItsVersionAndHelpAndEndsWith0) {
  const Outcome version = RunToEnd({QxsimProgram(), "--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.output.rfind("qxsim ", 0), 0u);
  const Outcome help = RunToEnd({QxsimProgram(), "--help"});
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--port", "--device", "--link", "--home", "--ephemeral", "--http", "--http-anyone",
                             "--still", "--seed", "--pace", "--code-page", "--trace", "--version", "--help"}) {
    EXPECT_NE(help.output.find(option), std::string::npos) << option;
  }
}

TEST(OptionsTest, TheProgramEndsWith2OnWrongUsage) {
  const Outcome outcome = RunToEnd({QxsimProgram(), "--port", "COM9:"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  EXPECT_NE(outcome.errors.find("COM9:"), std::string::npos);
}

}  // namespace
}  // namespace qxtest
