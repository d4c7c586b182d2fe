// Which messages the controller wants unasked.
#ifndef QXCM_COMMANDS_MEASURE_OUTPUT_MODES_H
#define QXCM_COMMANDS_MEASURE_OUTPUT_MODES_H

#include <cstdint>

#include "protocol/service.h"

namespace qxcm {

/// One mode for each kind of message; 0 is none. Guarded by the manager lock.
struct OutputModes {
  std::int32_t angle = 0;     // 1: HAN, VAN; 11: HAF, VAF; 21: HAR, VAR
  std::int32_t tilt = 0;      // 1: XTL, YTL
  std::int32_t distance = 0;  // 1: SDS; 2: SDS, HAN, VAN; 11: SDF; 12: SDF, HAF, VAF
  std::int32_t key = 0;       // 1: KEY
};

/// Tells the controller of a pressed key, when it has asked for key messages. Any thread.
void ReportKey(Service& service, std::uint32_t code);

}  // namespace qxcm

#endif
