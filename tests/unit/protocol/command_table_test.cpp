// The two command tables and the look-up over both.
#include "protocol/command_table.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

namespace {

using qxcm::CommandRows;
using qxcm::FindCommand;

using Words = std::vector<std::string>;

const Words kMainWords = {"ST_OMD", "GT_OMD", "MR_DST", "ST_HAN", "GT_MDT", "ST_HSW", "GT_HSW", "ST_PRM",
                          "GT_PRM", "GT_CST", "GT_EQP", "ST_CLK", "GT_CLK", "GT_BAT", "CM_I2C", "GT_PIF",
                          "EX_PRS", "GT_FLS", "MK_FDR", "RM_FIL", "RM_FDR", "CP_FIL", "MV_FIL", "CR_FIL",
                          "OP_FIL", "CL_FIL", "RD_FIL", "WR_FIL", "SK_FIL", "ST_FOC", "GT_FOS"};
const Words kToolsWords = {"ST_CST", "ST_EQP", "WR_PBK", "RD_PBK", "WR_REG", "RD_REG", "DL_REG", "ST_PWR"};

Words WordsOf(CommandRows rows) {
  Words words;
  for (const auto& entry : rows) words.emplace_back(entry.word);
  return words;
}

TEST(CommandTable, HoldsTheMainCommandsInTheirOrder) { EXPECT_EQ(WordsOf(qxcm::MainCommands()), kMainWords); }

TEST(CommandTable, HoldsTheToolsCommandsInTheirOrder) { EXPECT_EQ(WordsOf(qxcm::ToolsCommands()), kToolsWords); }

TEST(CommandTable, HasAHandlerForEveryWord) {
  for (const CommandRows& rows : {qxcm::MainCommands(), qxcm::ToolsCommands()}) {
    for (const auto& entry : rows) EXPECT_NE(entry.handler, nullptr) << entry.word;
  }
}

TEST(CommandTable, FindsTheHandlerOfItsOwnRow) {
  for (const auto& entry : qxcm::MainCommands()) EXPECT_EQ(FindCommand(entry.word, false), entry.handler) << entry.word;
  for (const auto& entry : qxcm::ToolsCommands()) EXPECT_EQ(FindCommand(entry.word, true), entry.handler) << entry.word;
}

TEST(CommandTable, KeepsTheToolsCommandsForToolsMode) {
  for (const std::string& word : kToolsWords) EXPECT_EQ(FindCommand(word, false), nullptr) << word;
}

TEST(CommandTable, OffersTheMainCommandsInToolsModeToo) {
  for (const std::string& word : kMainWords) EXPECT_EQ(FindCommand(word, true), FindCommand(word, false)) << word;
}

TEST(CommandTable, DoesNotFindWordsInAnotherCase) {
  for (std::string word : kMainWords) {
    for (char& letter : word) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    EXPECT_EQ(FindCommand(word, true), nullptr) << word;
  }
}

TEST(CommandTable, DoesNotFindLongerAndShorterWords) {
  for (const std::string& word : kMainWords) {
    EXPECT_EQ(FindCommand(word + " ", true), nullptr);
    EXPECT_EQ(FindCommand(word.substr(0, 5), true), nullptr);
    EXPECT_EQ(FindCommand(" " + word, true), nullptr);
  }
  EXPECT_EQ(FindCommand("", true), nullptr);
}

TEST(CommandTable, DoesNotFindNeighboursOfItsWords) {
  for (const std::string& word : kMainWords) {
    for (std::size_t at = 0; at < word.size(); ++at) {
      std::string neighbour = word;
      neighbour[at] = '#';
      EXPECT_EQ(FindCommand(neighbour, true), nullptr) << neighbour;
    }
  }
}

}  // namespace
