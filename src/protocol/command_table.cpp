// The two tables, in the order the documentation lists the commands, and the look-up over both.
#include "protocol/command_table.h"

#include <array>
#include <cstring>

#include "protocol/command_handlers.h"

namespace qxcm {

namespace {

constexpr CommandEntry kMain[] = {
    {"ST_OMD", StOmd},   {"GT_OMD", GtOmd},   {"MR_DST", MrDst},   {"ST_HAN", StHan},   {"GT_MDT", GtMdt},
    {"ST_HSW", StHsw},   {"GT_HSW", GtHsw},   {"ST_PRM", nullptr}, {"GT_PRM", nullptr}, {"GT_CST", nullptr},
    {"GT_EQP", nullptr}, {"ST_CLK", nullptr}, {"GT_CLK", nullptr}, {"GT_BAT", nullptr}, {"CM_I2C", nullptr},
    {"GT_PIF", nullptr}, {"EX_PRS", nullptr}, {"GT_FLS", nullptr}, {"MK_FDR", nullptr}, {"RM_FIL", nullptr},
    {"RM_FDR", nullptr}, {"CP_FIL", nullptr}, {"MV_FIL", nullptr}, {"CR_FIL", nullptr}, {"OP_FIL", nullptr},
    {"CL_FIL", nullptr}, {"RD_FIL", nullptr}, {"WR_FIL", nullptr}, {"SK_FIL", nullptr}, {"ST_FOC", StFoc},
    {"GT_FOS", GtFos},
};

// Reached only after a local application has switched tools mode on.
constexpr CommandEntry kTools[] = {
    {"ST_CST", nullptr}, {"ST_EQP", nullptr}, {"WR_PBK", nullptr}, {"RD_PBK", nullptr},
    {"WR_REG", nullptr}, {"RD_REG", nullptr}, {"DL_REG", nullptr}, {"ST_PWR", nullptr},
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
