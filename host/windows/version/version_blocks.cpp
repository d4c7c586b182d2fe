// A block: its length, its value's length, 1 for text (16 bits each), its name with a zero, and, each from the next
// multiple of 4 on, the value and the blocks below it.
#include "windows/version/version_blocks.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

constexpr std::size_t kHeaderSize = 6;
constexpr int kDeepest = 8;  // a resource has four levels

std::size_t Aligned(std::size_t offset) { return (offset + 3) & ~std::size_t{3}; }

WORD Read(const BYTE* bytes) {
  WORD word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

void Write(BYTE* bytes, std::size_t value) {
  const auto word = static_cast<WORD>(value);
  std::memcpy(bytes, &word, sizeof word);
}

/// Where the value begins; 0 when the name does not end inside the block.
std::size_t ValueOffset(const BYTE* block, std::size_t size) {
  for (std::size_t end = kHeaderSize; end + 2 <= size; end += 2) {
    if (Read(block + end) == 0) return Aligned(end + 2);
  }
  return 0;
}

/// Cuts the value to what there is of it; returns its size in bytes.
std::size_t CutValue(BYTE* block, std::size_t offset, std::size_t size) {
  const std::size_t unit = Read(block + 4) == 1 ? 2 : 1;
  const std::size_t room = offset < size ? size - offset : 0;
  const std::size_t length = std::min<std::size_t>(Read(block + 2), room / unit);
  Write(block + 2, length);
  return length * unit;
}

/// Cuts one block of at most `room` bytes, and those below it. Its length; 0 when it is none.
std::size_t CutBlock(BYTE* block, std::size_t room, int depth) {
  if (room < kHeaderSize || depth > kDeepest) return 0;
  const std::size_t size = std::min<std::size_t>(Read(block), room);
  const std::size_t value = size < kHeaderSize ? 0 : ValueOffset(block, size);
  if (value == 0) return 0;
  std::size_t end = std::min(value + CutValue(block, value, size), size);
  for (std::size_t below = Aligned(end); below < size; below = Aligned(end)) {
    const std::size_t length = CutBlock(block + below, size - below, depth + 1);
    if (length == 0) break;
    end = below + length;
  }
  Write(block, end);
  return end;
}

}  // namespace

bool CutVersionBlocks(BYTE* bytes, std::size_t size) { return CutBlock(bytes, size, 0) != 0; }

}  // namespace host
