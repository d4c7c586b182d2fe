// No path a controller can send leads out of the instrument's files, whatever the command.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "platform/text.h"
#include "support/path_spellings.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using namespace std::string_literals;

/// As a value of a command; empty when no command can carry it.
std::string Escaped(const std::u16string& path) {
  std::string value;
  for (const char c : qxcm::NarrowText(path)) {
    if (c == '\r' || c == kEnq) return {};  // ends or drops the frame
    if (c == ',' || c == '\\') value.push_back('\\');
    value.push_back(c);
  }
  constexpr std::size_t kLongestValue = 8000;  // what fits into a frame
  return value.size() > kLongestValue ? std::string() : value;
}

class ContainedCommands : public testing::Test {
 protected:
  ContainedCommands() : canary_(service_.root()) { service_.MakeFile("/own.txt", "own"); }

  /// All that a controller gets to see.
  std::string TryAll(const std::string& path) {
    std::string seen;
    for (const std::string& command :
         {"GT_FLS,PTH=" + path, "GT_FLS,PTH=" + path + "/*", "GT_FLS,PTH=" + path + "\\\\*.*", "OP_FIL,PTH=" + path,
          "RM_FDR,PTH=" + path, "RM_FIL,PTH=" + path, "MK_FDR,PTH=" + path, "CR_FIL,PTH=" + path,
          "CP_FIL,SPT=" + path + ",DPT=/copy.txt", "CP_FIL,SPT=/own.txt,DPT=" + path,
          "MV_FIL,SPT=" + path + ",DPT=/moved.txt", "MV_FIL,SPT=/own.txt,DPT=" + path, "EX_PRS,PTH=" + path}) {
      const Texts answers = service_.Answers(command);
      if (command.substr(0, 6) != "EX_PRS") {
        EXPECT_GE(answers.size(), 1u) << command.substr(0, 200);
      }
      for (const std::string& answer : answers) seen += answer + ReadIfOpened(answer);
    }
    for (const char* left : {"/copy.txt", "/moved.txt"}) {
      seen += ReadIfOpened(service_.Answer("OP_FIL,PTH="s + left));
      service_.Answer("RM_FIL,PTH="s + left);
    }
    service_.MakeFile("/own.txt", "own");
    return seen;
  }

  /// What an opened file holds; it is written to and closed again.
  std::string ReadIfOpened(const std::string& answer) {
    const std::string opened = "FIL,STS=SCS,HAN=";
    if (answer.substr(0, opened.size()) != opened) return {};
    const std::string number = answer.substr(opened.size());
    std::string line = service_.Answer("RD_FIL,HAN=" + number);
    service_.Answer("WR_FIL,VAL=written,HAN=" + number);
    service_.Answer("CL_FIL,HAN=" + number);
    return line;
  }

  std::set<std::filesystem::path> Inside() const {
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(service_.root())) paths.insert(entry);
    return paths;
  }
  /// Removes what has been made inside, so that it is not taken for something from outside.
  void CleanUp(const std::set<std::filesystem::path>& before) const {
    for (const std::filesystem::path& path : Inside()) {
      if (before.count(path) == 0) std::filesystem::remove_all(path);
    }
  }

  ControllerService service_;
  const Canary canary_;
};

TEST_F(ContainedCommands, AnswerEverySpellingAndReachNothingOutside) {
  const auto before = canary_.Look();
  std::set<std::string> values;
  for (const std::u16string& path : PathSpellings(canary_)) values.insert(Escaped(path));
  values.erase("");
  EXPECT_GE(values.size(), 300u);
  const auto inside = Inside();
  for (const std::string& value : values) {
    SCOPED_TRACE(testing::PrintToString(value));
    const std::string seen = TryAll(value);
    CleanUp(inside);
    EXPECT_EQ(seen.find(Canary::kSecret), std::string::npos) << value;
    EXPECT_EQ(seen.find("FNM="s + Canary::kSecretFile), std::string::npos) << value;
  }
  EXPECT_EQ(canary_.Look(), before);
}

}  // namespace
}  // namespace qxtest
