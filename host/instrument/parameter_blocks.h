// The platform's parameter block: values by a number of 0 to 255.
#ifndef QXHOST_INSTRUMENT_PARAMETER_BLOCKS_H
#define QXHOST_INSTRUMENT_PARAMETER_BLOCKS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "instrument/kept.h"
#include "instrument/state.h"

namespace host::instrument {

using ParameterBlocks = std::map<std::uint8_t, std::vector<std::uint8_t>>;

constexpr std::size_t kLongestParameterBlock = 254;

/// What the block holds at first.
ParameterBlocks StandardParameterBlocks();

/// The instrument's one block.
Kept<ParameterBlocks>& ParameterBlock();

/// {"7": "01020304"}: an entry's bytes in hexadecimal digits; there may be none.
Json ParameterBlocksToJson(const ParameterBlocks& blocks);
/// A null removes an entry.
void MergeParameterBlocks(const Json& patch, ParameterBlocks* blocks);

}  // namespace host::instrument

#endif
