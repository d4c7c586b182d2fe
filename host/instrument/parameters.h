// The instrument's measurement parameters: three correction switches, temperature and pressure, the EDM code.
#ifndef QXHOST_INSTRUMENT_PARAMETERS_H
#define QXHOST_INSTRUMENT_PARAMETERS_H

#include <array>
#include <cstdint>

#include "instrument/kept.h"
#include "instrument/state.h"

namespace host::instrument {

/// Any value of the right type is taken. The defaults are those of the instrument.
struct ParameterValues {
  std::array<std::int32_t, 3> integers = {1, 1, 1};
  std::array<double, 2> doubles = {15.0, 1013.25};
  std::int32_t edm = 5;
};

/// The instrument's one set.
Kept<ParameterValues>& Parameters();

/// {"integers": [1, 1, 1], "doubles": [15.0, 1013.25], "edm": 5}; what is no finite number is the text "inf", "-inf",
/// "nan" or "-nan".
Json ParametersToJson(const ParameterValues& values);
void MergeParameters(const Json& patch, ParameterValues* values);

}  // namespace host::instrument

#endif
