// The file's headers name its sections and where, once loaded, its resources lie; the sections say where in the file
// that is. The resources are a tree of three directories: type, number, language.
#include "posix/version/executable.h"

namespace host {
namespace {

constexpr std::uint16_t kDosMagic = 0x5A4D;    // "MZ"
constexpr std::uint32_t kPeMagic = 0x4550;     // "PE", two zeros
constexpr std::uint16_t kPe32Magic = 0x10B;    // 32 bits
constexpr std::uint16_t kPe64Magic = 0x20B;    // 64 bits
constexpr std::uint64_t kFileHeaderSize = 24;  // with the magic
constexpr std::uint64_t kSectionSize = 40;
constexpr std::uint32_t kResources = 2;  // number of the directory that names them
constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kVersionNumber = 1;
constexpr std::uint32_t kIsDirectory = 0x80000000;
constexpr std::uint32_t kShortestResource = 6;
constexpr std::uint32_t kLongestResource = 0xFFFF;

/// Thrown inside of this file only; becomes the result.
struct Failure {
  DWORD error;
};

template <class Number>
Number Need(const std::optional<Number>& number) {
  if (!number) throw Failure{ERROR_BAD_FORMAT};
  return *number;
}

class Executable {
 public:
  explicit Executable(Bytes file) : file_(file) {
    const auto header = file.U32(0x3C);
    const bool executable = file.U16(0) == kDosMagic && header && file.U32(*header) == kPeMagic;
    if (!executable) throw Failure{ERROR_RESOURCE_DATA_NOT_FOUND};
    section_count_ = Need(file.U16(*header + std::uint64_t{6}));
    optional_header_ = *header + kFileHeaderSize;
    sections_ = optional_header_ + Need(file.U16(*header + std::uint64_t{20}));
  }

  /// Where the resources lie once loaded, and their size.
  Bytes Resources() const {
    const std::uint16_t magic = Need(file_.U16(optional_header_));
    if (magic != kPe32Magic && magic != kPe64Magic) throw Failure{ERROR_RESOURCE_DATA_NOT_FOUND};
    const std::uint64_t count_at = optional_header_ + (magic == kPe32Magic ? 92 : 108);
    const std::uint64_t directory = count_at + 4 + 8 * std::uint64_t{kResources};
    const bool has_directory = Need(file_.U32(count_at)) > kResources && directory + 8 <= sections_;
    const std::uint32_t address = has_directory ? Need(file_.U32(directory)) : 0;
    if (address == 0) throw Failure{ERROR_RESOURCE_DATA_NOT_FOUND};
    return At(address);
  }

  /// What the file holds of the section from this address on.
  Bytes At(std::uint32_t address) const {
    for (std::uint64_t i = 0; i < section_count_; ++i) {
      const std::uint64_t section = sections_ + i * kSectionSize;
      const std::uint32_t begin = Need(file_.U32(section + 12));
      const std::uint32_t size = Need(file_.U32(section + 16));
      if (address < begin || address - begin >= size) continue;
      return file_.From(Need(file_.U32(section + 20))).First(size).From(address - begin);
    }
    throw Failure{ERROR_BAD_FORMAT};
  }

 private:
  const Bytes file_;
  std::uint64_t optional_header_ = 0;
  std::uint64_t sections_ = 0;
  std::uint16_t section_count_ = 0;
};

/// One directory of the tree; offsets in it count from the beginning of the resources.
class Directory {
 public:
  Directory(Bytes resources, std::uint32_t offset) : resources_(resources), offset_(offset) {
    named_ = Need(resources.U16(offset_ + 12));
    numbered_ = Need(resources.U16(offset_ + 14));
  }

  /// What the entry of this number leads to; the entries with names come before those with numbers.
  std::optional<std::uint32_t> Find(std::uint32_t number) const {
    for (std::uint64_t i = named_; i < named_ + numbered_; ++i) {
      if (Need(resources_.U32(Entry(i))) == number) return Need(resources_.U32(Entry(i) + 4));
    }
    return std::nullopt;
  }
  std::optional<std::uint32_t> First() const {
    if (named_ + numbered_ == 0) return std::nullopt;
    return Need(resources_.U32(Entry(0) + 4));
  }

 private:
  std::uint64_t Entry(std::uint64_t index) const { return offset_ + 16 + index * 8; }

  const Bytes resources_;
  const std::uint64_t offset_;
  std::uint64_t named_ = 0;
  std::uint64_t numbered_ = 0;
};

Directory Below(Bytes resources, const std::optional<std::uint32_t>& entry, DWORD missing) {
  if (!entry) throw Failure{missing};
  if ((*entry & kIsDirectory) == 0) throw Failure{ERROR_BAD_FORMAT};
  return {resources, *entry & ~kIsDirectory};
}

Bytes VersionResource(const Executable& file) {
  const Bytes resources = file.Resources();
  const Directory types(resources, 0);
  const Directory numbers = Below(resources, types.Find(kVersionType), ERROR_RESOURCE_TYPE_NOT_FOUND);
  const Directory languages = Below(resources, numbers.Find(kVersionNumber), ERROR_RESOURCE_NAME_NOT_FOUND);
  const auto entry = languages.First();
  if (!entry) throw Failure{ERROR_RESOURCE_NAME_NOT_FOUND};
  if ((*entry & kIsDirectory) != 0) throw Failure{ERROR_BAD_FORMAT};
  const std::uint32_t address = Need(resources.U32(*entry));
  const std::uint32_t size = Need(resources.U32(*entry + std::uint64_t{4}));
  const Bytes found = file.At(address);
  const bool good = size >= kShortestResource && size <= kLongestResource && found.Holds(0, size);
  if (!good) throw Failure{ERROR_BAD_FORMAT};
  return found.First(size);
}

}  // namespace

DWORD FindVersionResource(Bytes file, Bytes* resource) try {
  *resource = VersionResource(Executable(file));
  return ERROR_SUCCESS;
} catch (const Failure& failure) {
  return failure.error;
}

}  // namespace host
