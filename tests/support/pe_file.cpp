#include "support/pe_file.h"

#include <cstddef>
#include <string_view>

namespace qxtest {
namespace {

constexpr std::uint32_t kHeadersSize = 0x400;
constexpr std::uint32_t kFileAlignment = 0x200;
constexpr std::uint32_t kCodeAddress = 0x1000;
constexpr std::uint32_t kResourceAddress = 0x2000;
constexpr std::uint32_t kDirectorySize = 16;
constexpr std::uint32_t kEntrySize = 8;
constexpr std::uint32_t kIsDirectory = 0x80000000;

void Put16(FileBytes* bytes, unsigned value) {
  bytes->push_back(static_cast<std::uint8_t>(value));
  bytes->push_back(static_cast<std::uint8_t>(value >> 8));
}
void Put32(FileBytes* bytes, std::uint32_t value) {
  Put16(bytes, value & 0xFFFF);
  Put16(bytes, value >> 16);
}
void PutText(FileBytes* bytes, const WideText& text) {
  for (const WCHAR unit : text) Put16(bytes, unit);
  Put16(bytes, 0);
}
void Put(FileBytes* bytes, const FileBytes& more) { bytes->insert(bytes->end(), more.begin(), more.end()); }
void Align(FileBytes* bytes, std::size_t to) { bytes->resize((bytes->size() + to - 1) / to * to); }
void Set16(FileBytes* bytes, std::size_t at, unsigned value) {
  (*bytes)[at] = static_cast<std::uint8_t>(value);
  (*bytes)[at + 1] = static_cast<std::uint8_t>(value >> 8);
}
void Set32(FileBytes* bytes, std::size_t at, std::uint32_t value) {
  Set16(bytes, at, value & 0xFFFF);
  Set16(bytes, at + 2, value >> 16);
}

WideText Hex4(unsigned number) {
  WideText text;
  for (const int shift : {12, 8, 4, 0}) text.push_back(TEXT("0123456789abcdef")[number >> shift & 15]);
  return text;
}

FileBytes FixedInfo() {
  FileBytes info;
  for (const std::uint32_t word : {0xFEEF04BDu, 0x10000u, 0x10002u, 0x30004u, 0x10002u, 0x30004u}) Put32(&info, word);
  info.resize(52);
  return info;
}

FileBytes TextTable(const VersionTable& table) {
  std::vector<FileBytes> texts;
  for (const auto& [name, text] : table.texts) {
    FileBytes value;
    PutText(&value, text);
    texts.push_back(VersionBlock(name, true, value, static_cast<std::uint16_t>(text.size() + 1), {}));
  }
  return VersionBlock(Hex4(table.language) + Hex4(table.code_page), true, {}, 0, texts);
}

/// A directory with one number that leads to another directory or, without the mark, to data.
void PutDirectory(FileBytes* bytes, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries) {
  for (int i = 0; i < 3; ++i) Put32(bytes, 0);
  Put16(bytes, 0);
  Put16(bytes, static_cast<unsigned>(entries.size()));
  for (const auto& [number, offset] : entries) {
    Put32(bytes, number);
    Put32(bytes, offset);
  }
}

FileBytes ResourceSection(const FileBytes& resource, const PeLayout& layout) {
  const std::uint32_t numbers = kDirectorySize + 2 * kEntrySize;
  const std::uint32_t languages = numbers + kDirectorySize + kEntrySize;
  const auto count = static_cast<std::uint32_t>(layout.languages.size());
  const std::uint32_t entries = languages + kDirectorySize + count * kEntrySize;
  FileBytes section;
  // The first entry, a type of no interest, leads to the same directory.
  PutDirectory(&section, {{3, kIsDirectory | numbers}, {layout.type, kIsDirectory | numbers}});
  PutDirectory(&section, {{layout.number, kIsDirectory | languages}});
  std::vector<std::pair<std::uint32_t, std::uint32_t>> data;
  for (const std::uint16_t language : layout.languages) {
    data.emplace_back(language, entries + static_cast<std::uint32_t>(data.size()) * 16);
  }
  PutDirectory(&section, data);
  for (std::uint32_t i = 0; i < count; ++i) {
    Put32(&section, kResourceAddress + entries + count * 16);
    Put32(&section, i == 0 ? static_cast<std::uint32_t>(resource.size()) : 0);
    Put32(&section, 0);
    Put32(&section, 0);
  }
  Put(&section, resource);
  Align(&section, kFileAlignment);
  return section;
}

void PutSection(FileBytes* file, std::string_view name, std::uint32_t address, std::uint32_t at, std::uint32_t size) {
  const std::size_t begin = file->size();
  file->resize(begin + 40);
  for (std::size_t i = 0; i < name.size(); ++i) (*file)[begin + i] = static_cast<std::uint8_t>(name[i]);
  Set32(file, begin + 8, size);
  Set32(file, begin + 12, address);
  Set32(file, begin + 16, size);
  Set32(file, begin + 20, at);
  Set32(file, begin + 36, 0x40000040);
}

void PutHeaders(FileBytes* file, const PeLayout& layout, std::uint32_t resources) {
  const bool wide = layout.bits == 64;
  const unsigned optional_size = wide ? 240 : 224;
  file->resize(0x40);
  Set16(file, 0, 0x5A4D);
  Set32(file, 0x3C, 0x40);
  Put32(file, 0x4550);
  Put16(file, wide ? 0x8664 : 0x14C);
  Put16(file, 2);
  for (int i = 0; i < 3; ++i) Put32(file, 0);
  Put16(file, optional_size);
  Put16(file, 0x2102);
  const std::size_t optional = file->size();
  file->resize(optional + optional_size);
  Set16(file, optional, wide ? 0x20B : 0x10B);
  Set32(file, optional + 32, 0x1000);
  Set32(file, optional + 36, kFileAlignment);
  Set16(file, optional + 48, 4);
  Set32(file, optional + 56, kResourceAddress + (resources + 0xFFF) / 0x1000 * 0x1000);
  Set32(file, optional + 60, kHeadersSize);
  Set16(file, optional + 68, 2);
  const std::size_t directories = optional + (wide ? 112 : 96);
  Set32(file, directories - 4, 16);
  if (!layout.has_resources) return;
  Set32(file, directories + 16, kResourceAddress);
  Set32(file, directories + 20, resources);
}

}  // namespace

FileBytes VersionBlock(const WideText& name, bool text, const FileBytes& value, std::uint16_t units,
                       const std::vector<FileBytes>& below) {
  FileBytes block;
  Put16(&block, 0);
  Put16(&block, units);
  Put16(&block, text ? 1 : 0);
  PutText(&block, name);
  if (!value.empty()) Align(&block, 4);
  Put(&block, value);
  for (const FileBytes& other : below) {
    Align(&block, 4);
    Put(&block, other);
  }
  Set16(&block, 0, static_cast<unsigned>(block.size()));
  return block;
}

FileBytes VersionResource(const std::vector<VersionTable>& tables) {
  std::vector<FileBytes> text_tables;
  FileBytes languages;
  for (const VersionTable& table : tables) {
    text_tables.push_back(TextTable(table));
    Put16(&languages, table.language);
    Put16(&languages, table.code_page);
  }
  const auto size = static_cast<std::uint16_t>(languages.size());
  const FileBytes list = VersionBlock(TEXT("Translation"), false, languages, size, {});
  return VersionBlock(TEXT("VS_VERSION_INFO"), false, FixedInfo(), 52,
                      {VersionBlock(TEXT("StringFileInfo"), true, {}, 0, text_tables),
                       VersionBlock(TEXT("VarFileInfo"), true, {}, 0, {list})});
}

FileBytes PeFile(const FileBytes& resource, const PeLayout& layout) {
  const FileBytes section = ResourceSection(resource, layout);
  const auto size = static_cast<std::uint32_t>(section.size());
  FileBytes file;
  PutHeaders(&file, layout, size);
  PutSection(&file, ".text", kCodeAddress, kHeadersSize, kFileAlignment);
  PutSection(&file, ".rsrc", kResourceAddress, kHeadersSize + kFileAlignment, size);
  file.resize(kHeadersSize + kFileAlignment);
  Put(&file, section);
  return file;
}

}  // namespace qxtest
