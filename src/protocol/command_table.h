// The command words and their handlers.
#ifndef QXCM_PROTOCOL_COMMAND_TABLE_H
#define QXCM_PROTOCOL_COMMAND_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "protocol/field_map.h"

namespace qxcm {

class CommandProcessor;

/// Results of a handler; any other value is a failure of its own kind, answered like kFailed.
constexpr std::int32_t kDone = 0;           // the handler has replied, or has nothing to say
constexpr std::int32_t kBadParameter = -1;  // a field is missing or malformed: answered "ER_PRM"
constexpr std::int32_t kFailed = -12;       // the operation failed: answered "ER_FAL"

/// Carries out one command on the dispatcher thread and sends its own replies before it returns.
using CommandHandler = std::int32_t (*)(CommandProcessor& processor, const FieldMap& fields);

/// One row. A word without a handler is answered like an unknown one.
struct CommandEntry {
  std::string_view word;
  CommandHandler handler;
};

/// The rows of a table in their order.
struct CommandRows {
  const CommandEntry* begin() const { return first; }
  const CommandEntry* end() const { return first + count; }
  const CommandEntry* first;
  std::size_t count;
};

CommandRows MainCommands();
CommandRows ToolsCommands();

/// The handler of a word (exact, case-sensitive): from the main table, and in tools mode from the tools table too.
/// Null when there is none.
CommandHandler FindCommand(std::string_view word, bool tools_mode);

}  // namespace qxcm

#endif
