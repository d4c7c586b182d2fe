// A block: its length, its value's length, 1 for text (16 bits each), its name with a zero, and, each from the next
// multiple of 4 on, the value and the blocks below it.
#include "posix/version/version_block.h"

#include <string>

#include "common/text/text.h"

namespace host {
namespace {

constexpr std::uint64_t kHeaderSize = 6;
constexpr std::uint16_t kText = 1;

std::uint64_t Aligned(std::uint64_t offset) { return (offset + 3) & ~std::uint64_t{3}; }

class Block {
 public:
  /// The block that these bytes begin with; nothing when they are too few for one.
  static std::optional<Block> Read(Bytes bytes) {
    const auto length = bytes.U16(0);
    if (!length || *length < kHeaderSize || !bytes.Holds(0, kHeaderSize)) return std::nullopt;
    return Block(bytes.First(*length));
  }

  /// How far it reaches in the bytes it was read from.
  std::uint64_t size() const { return bytes_.size(); }

  bool HasName(std::u16string_view name) const {
    for (std::size_t i = 0; i < name.size(); ++i) {
      const auto unit = bytes_.U16(kHeaderSize + 2 * i);
      if (!unit || *unit == 0 || UpperCase(*unit) != UpperCase(name[i])) return false;
    }
    return bytes_.U16(kHeaderSize + 2 * name.size()) == 0;
  }

  VersionValue Value() const {
    const bool text = *bytes_.U16(4) == kText;
    return {bytes_.From(ValueOffset()).First(ValueSize()), text};
  }

  std::optional<Block> FindBelow(std::u16string_view name) const {
    for (std::uint64_t offset = Aligned(ValueOffset() + ValueSize());;) {
      const auto block = Read(bytes_.From(offset));
      if (!block || block->HasName(name)) return block;
      offset += Aligned(block->size());
    }
  }

 private:
  explicit Block(Bytes bytes) : bytes_(bytes) {
    std::uint64_t end = kHeaderSize;
    while (bytes_.U16(end).value_or(0) != 0) end += 2;
    value_offset_ = Aligned(end + 2);
  }

  std::uint64_t ValueOffset() const { return value_offset_; }
  std::uint64_t ValueSize() const {
    const std::uint64_t length = *bytes_.U16(2);
    return *bytes_.U16(4) == kText ? 2 * length : length;
  }

  Bytes bytes_;
  std::uint64_t value_offset_ = 0;
};

}  // namespace

std::optional<VersionValue> FindVersionValue(Bytes resource, std::u16string_view path) {
  std::optional<Block> block = Block::Read(resource);
  while (block && !path.empty()) {
    const std::u16string_view name = path.substr(0, path.find(u'\\'));
    path.remove_prefix(name.size() == path.size() ? path.size() : name.size() + 1);
    if (!name.empty()) block = block->FindBelow(name);
  }
  if (!block) return std::nullopt;
  return block->Value();
}

}  // namespace host
