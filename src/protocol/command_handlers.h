// The handlers that the command table names; each is defined in its family's folder under commands/.
#ifndef QXCM_PROTOCOL_COMMAND_HANDLERS_H
#define QXCM_PROTOCOL_COMMAND_HANDLERS_H

#include <cstdint>

namespace qxcm {

class CommandProcessor;
class FieldMap;

// commands/measure/output_modes.cpp
std::int32_t StOmd(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtOmd(CommandProcessor& processor, const FieldMap& fields);

// commands/measure/distance.cpp
std::int32_t MrDst(CommandProcessor& processor, const FieldMap& fields);

// commands/measure/angles.cpp
std::int32_t StHan(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtMdt(CommandProcessor& processor, const FieldMap& fields);

// commands/measure/switches.cpp
std::int32_t StHsw(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtHsw(CommandProcessor& processor, const FieldMap& fields);

// commands/measure/focus.cpp
std::int32_t StFoc(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtFos(CommandProcessor& processor, const FieldMap& fields);

}  // namespace qxcm

#endif
