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

// commands/instrument/parameters.cpp
std::int32_t StPrm(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtPrm(CommandProcessor& processor, const FieldMap& fields);

// commands/instrument/equipment.cpp
std::int32_t StEqp(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtEqp(CommandProcessor& processor, const FieldMap& fields);

// commands/instrument/constants.cpp
std::int32_t StCst(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtCst(CommandProcessor& processor, const FieldMap& fields);

// commands/instrument/product.cpp
std::int32_t GtPif(CommandProcessor& processor, const FieldMap& fields);

// commands/instrument/parameter_blocks.cpp
std::int32_t RdPbk(CommandProcessor& processor, const FieldMap& fields);
std::int32_t WrPbk(CommandProcessor& processor, const FieldMap& fields);

// commands/instrument/i2c.cpp
std::int32_t CmI2c(CommandProcessor& processor, const FieldMap& fields);

// commands/services/clock.cpp
std::int32_t StClk(CommandProcessor& processor, const FieldMap& fields);
std::int32_t GtClk(CommandProcessor& processor, const FieldMap& fields);

// commands/services/files.cpp
std::int32_t MkFdr(CommandProcessor& processor, const FieldMap& fields);
std::int32_t RmFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t RmFdr(CommandProcessor& processor, const FieldMap& fields);
std::int32_t CrFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t CpFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t MvFil(CommandProcessor& processor, const FieldMap& fields);

// commands/services/file_list.cpp
std::int32_t GtFls(CommandProcessor& processor, const FieldMap& fields);

// commands/services/open_files.cpp
std::int32_t OpFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t ClFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t RdFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t WrFil(CommandProcessor& processor, const FieldMap& fields);
std::int32_t SkFil(CommandProcessor& processor, const FieldMap& fields);

// commands/services/registry.cpp
std::int32_t RdReg(CommandProcessor& processor, const FieldMap& fields);
std::int32_t WrReg(CommandProcessor& processor, const FieldMap& fields);
std::int32_t DlReg(CommandProcessor& processor, const FieldMap& fields);

// commands/services/battery.cpp
std::int32_t GtBat(CommandProcessor& processor, const FieldMap& fields);

// commands/services/power.cpp
std::int32_t StPwr(CommandProcessor& processor, const FieldMap& fields);

// commands/services/process.cpp
std::int32_t ExPrs(CommandProcessor& processor, const FieldMap& fields);

}  // namespace qxcm

#endif
