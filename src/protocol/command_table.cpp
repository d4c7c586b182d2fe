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

// Both tables behind one hash of the word: a look-up costs the same however many commands there are.
class Index {
 public:
  Index() {
    for (const CommandEntry& entry : kMain) Insert(entry, false);
    for (const CommandEntry& entry : kTools) Insert(entry, true);
  }

  CommandHandler Find(std::string_view word, bool tools_mode) const {
    if (word.size() != kWordLength) return nullptr;
    for (std::size_t at = Hash(word);; at = (at + 1) % kSlots) {
      const Slot& slot = slots_[at];
      if (slot.word.empty()) return nullptr;
      if (slot.word == word) return slot.tools_only && !tools_mode ? nullptr : slot.handler;
    }
  }

 private:
  static constexpr std::size_t kSlots = 256;  // a power of two, far more than there are words
  struct Slot {
    std::string_view word;
    CommandHandler handler = nullptr;
    bool tools_only = false;
  };

  static std::size_t Hash(std::string_view word) {
    std::uint64_t letters = 0;
    std::memcpy(&letters, word.data(), kWordLength);
    return (letters * 0x9E3779B97F4A7C15u) >> 56;
  }

  void Insert(const CommandEntry& entry, bool tools_only) {
    std::size_t at = Hash(entry.word);
    while (!slots_[at].word.empty()) at = (at + 1) % kSlots;
    slots_[at] = {entry.word, entry.handler, tools_only};
  }

  std::array<Slot, kSlots> slots_;
};

const Index kIndex;  // built before the library's entry point runs

}  // namespace

CommandRows MainCommands() { return {kMain, std::size(kMain)}; }

CommandRows ToolsCommands() { return {kTools, std::size(kTools)}; }

CommandHandler FindCommand(std::string_view word, bool tools_mode) { return kIndex.Find(word, tools_mode); }

}  // namespace qxcm
