// What the instrument stores, in the state document: parameters, store items, parameter block. All of it persists.
#ifndef QXHOST_INSTRUMENT_STORED_SECTIONS_H
#define QXHOST_INSTRUMENT_STORED_SECTIONS_H

#include <memory>

#include "instrument/state.h"

namespace host::instrument {

/// "parameters". Lists are replaced whole.
std::unique_ptr<StateSection> MakeParametersSection();
/// "store".
std::unique_ptr<StateSection> MakeStoreSection();
/// "parameter_blocks".
std::unique_ptr<StateSection> MakeParameterBlocksSection();

}  // namespace host::instrument

#endif
