// The measuring side of the state document: angles, tilt, distance, measurement, switches; focus.
#ifndef QXHOST_INSTRUMENT_MEASURING_SECTIONS_H
#define QXHOST_INSTRUMENT_MEASURING_SECTIONS_H

#include <memory>
#include <vector>

#include "instrument/state.h"

namespace host::instrument {

/// From angles to switches, in the order they appear. A change of angles, tilt or distance delivers the instrument's
/// event for it.
std::vector<std::unique_ptr<StateSection>> MakeMeasuringSections();

/// "focus".
std::unique_ptr<StateSection> MakeFocusSection();

}  // namespace host::instrument

#endif
