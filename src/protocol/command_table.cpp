// The two tables, in the order the documentation lists the commands, and the look-up over both.
#include "protocol/command_table.h"

#include <array>
#include <cstring>

#include "protocol/command_handlers.h"

namespace qxcm {

namespace {

constexpr CommandEntry kMain[] = {
    {"ST_OMD", StOmd}, {"GT_OMD", GtOmd}, {"MR_DST", MrDst}, {"ST_HAN", StHan}, {"GT_MDT", GtMdt}, {"ST_HSW", StHsw},
    {"GT_HSW", GtHsw}, {"ST_PRM", StPrm}, {"GT_PRM", GtPrm}, {"GT_CST", GtCst}, {"GT_EQP", GtEqp}, {"ST_CLK", StClk},
    {"GT_CLK", GtClk}, {"GT_BAT", GtBat}, {"CM_I2C", CmI2c}, {"GT_PIF", GtPif}, {"EX_PRS", ExPrs}, {"GT_FLS", GtFls},
    {"MK_FDR", MkFdr}, {"RM_FIL", RmFil}, {"RM_FDR", RmFdr}, {"CP_FIL", CpFil}, {"MV_FIL", MvFil}, {"CR_FIL", CrFil},
    {"OP_FIL", OpFil}, {"CL_FIL", ClFil}, {"RD_FIL", RdFil}, {"WR_FIL", WrFil}, {"SK_FIL", SkFil}, {"ST_FOC", StFoc},
    {"GT_FOS", GtFos},
};

// Reached only after a local application has switched tools mode on.
constexpr CommandEntry kTools[] = {
    {"ST_CST", StCst}, {"ST_EQP", StEqp}, {"WR_PBK", WrPbk}, {"RD_PBK", RdPbk},
    {"WR_REG", WrReg}, {"RD_REG", RdReg}, {"DL_REG", DlReg}, {"ST_PWR", StPwr},
};

constexpr std::size_t kWordLength = 6;

// Both tables behind one hash of the word: a look-up costs the same however many commands there are. A slot holds the
// number of its row, counted from 1 through both tables.
class Index {
 public:
  Index() {
    for (std::size_t number = 1; number <= std::size(kMain) + std::size(kTools); ++number) Insert(number);
  }

  CommandHandler Find(std::string_view word, bool tools_mode) const {
    if (word.size() != kWordLength) return nullptr;
    for (std::size_t at = Hash(word); slots_[at] != kFree; at = (at + 1) % kSlots) {
      const CommandEntry& entry = Row(slots_[at]);
      if (entry.word == word) return IsToolsOnly(slots_[at]) && !tools_mode ? nullptr : entry.handler;
    }
    return nullptr;
  }

 private:
  static constexpr std::size_t kSlots = 256;  // a power of two, far more than there are words
  static constexpr std::uint8_t kFree = 0;

  static bool IsToolsOnly(std::size_t number) { return number > std::size(kMain); }

  static const CommandEntry& Row(std::size_t number) {
    return IsToolsOnly(number) ? kTools[number - std::size(kMain) - 1] : kMain[number - 1];
  }

  static std::size_t Hash(std::string_view word) {
    std::uint64_t letters = 0;
    std::memcpy(&letters, word.data(), kWordLength);
    return (letters * 0x9E3779B97F4A7C15u) >> 56;
  }

  void Insert(std::size_t number) {
    std::size_t at = Hash(Row(number).word);
    while (slots_[at] != kFree) at = (at + 1) % kSlots;
    slots_[at] = static_cast<std::uint8_t>(number);
  }

  std::array<std::uint8_t, kSlots> slots_{};
};

const Index kIndex;  // built before the library's entry point runs

}  // namespace

CommandRows MainCommands() { return {kMain, std::size(kMain)}; }

CommandRows ToolsCommands() { return {kTools, std::size(kTools)}; }

CommandHandler FindCommand(std::string_view word, bool tools_mode) { return kIndex.Find(word, tools_mode); }

}  // namespace qxcm
