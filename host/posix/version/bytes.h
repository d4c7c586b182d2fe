// Little-endian numbers of a file in memory, none of them read outside of it.
#ifndef QXHOST_POSIX_VERSION_BYTES_H
#define QXHOST_POSIX_VERSION_BYTES_H

#include <cstddef>
#include <cstdint>
#include <optional>

namespace host {

/// Bytes that belong to somebody else. Any offset and size may be asked for.
class Bytes {
 public:
  Bytes() = default;
  Bytes(const void* data, std::size_t size) : data_(static_cast<const std::uint8_t*>(data)), size_(size) {}

  const std::uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }

  bool Holds(std::uint64_t offset, std::uint64_t size) const { return offset <= size_ && size <= size_ - offset; }

  std::optional<std::uint16_t> U16(std::uint64_t offset) const {
    if (!Holds(offset, 2)) return std::nullopt;
    return static_cast<std::uint16_t>(data_[offset] | data_[offset + 1] << 8);
  }
  std::optional<std::uint32_t> U32(std::uint64_t offset) const {
    if (!Holds(offset, 4)) return std::nullopt;
    return *U16(offset) | static_cast<std::uint32_t>(*U16(offset + 2)) << 16;
  }

  /// From an offset to the end; empty past it.
  Bytes From(std::uint64_t offset) const { return offset <= size_ ? Bytes(data_ + offset, size_ - offset) : Bytes(); }
  /// The first so many, or all.
  Bytes First(std::uint64_t size) const { return size < size_ ? Bytes(data_, static_cast<std::size_t>(size)) : *this; }

 private:
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace host

#endif
