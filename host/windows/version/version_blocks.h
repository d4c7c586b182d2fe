// The blocks that a version resource is made of, each inside the one above it.
#ifndef QXHOST_WINDOWS_VERSION_VERSION_BLOCKS_H
#define QXHOST_WINDOWS_VERSION_VERSION_BLOCKS_H

#include <windows.h>

#include <cstddef>

namespace host {

/// Cuts the blocks of a resource, which may say anything of their lengths, so that none reaches out of these bytes or
/// the block above it: the system goes by what they say. False when the bytes hold no block at all.
bool CutVersionBlocks(BYTE* bytes, std::size_t size);

}  // namespace host

#endif
