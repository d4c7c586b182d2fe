// The controller's side of the state document: its batteries, and what it says of itself.
#ifndef QXHOST_INSTRUMENT_CONTROLLER_SECTIONS_H
#define QXHOST_INSTRUMENT_CONTROLLER_SECTIONS_H

#include <memory>

#include "instrument/state.h"

namespace host::instrument {

/// "battery". A change delivers the battery event.
std::unique_ptr<StateSection> MakeBatterySection();

/// "system": revision, language and power state. Its reset also forgets the programs that were started.
std::unique_ptr<StateSection> MakeSystemSection();

}  // namespace host::instrument

#endif
