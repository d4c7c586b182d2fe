// A simulator whose home stays, so that it can be started again.
#ifndef QXTEST_TOOLS_KEPT_HOME_H
#define QXTEST_TOOLS_KEPT_HOME_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "tools/simulator_test.h"

namespace qxtest {

inline std::string Content(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

inline void Fill(const std::filesystem::path& file, const std::string& text) { std::ofstream(file) << text; }

class PersistenceTest : public SimulatorTest {
 protected:
  PersistenceTest() {
    simulator_.reset();
    options_.ephemeral = false;
    options_.home = folder_ / "home";
    Start();
  }
  void Restart() {
    simulator_.reset();
    Start();
  }
  std::filesystem::path File() const { return options_.home + "/state.json"; }
  Json Kept() const { return Json::parse(Content(File())); }
  std::size_t Entries() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(options_.home), std::filesystem::directory_iterator()));
  }
};

}  // namespace qxtest

#endif
