// Windows executables made byte by byte: headers, two sections, and a resource tree with a version resource.
//
// It shares nothing with the reader on trial but the file format.
#ifndef QXTEST_SUPPORT_PE_FILE_H
#define QXTEST_SUPPORT_PE_FILE_H

#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qxtest {

using FileBytes = std::vector<std::uint8_t>;
using WideText = std::basic_string<WCHAR>;

/// One block of a version resource. `units` is the value's length as written into the block.
FileBytes VersionBlock(const WideText& name, bool text, const FileBytes& value, std::uint16_t units,
                       const std::vector<FileBytes>& below);

/// The texts of one language and code page, in the order they stand.
struct VersionTable {
  std::uint16_t language = 0x0409;
  std::uint16_t code_page = 1200;
  std::vector<std::pair<WideText, WideText>> texts;
};

/// A whole resource: the fixed part says version 1.2.3.4, then come the tables and the list of their languages.
FileBytes VersionResource(const std::vector<VersionTable>& tables);

/// How the resource stands in the file.
struct PeLayout {
  int bits = 64;  ///< or 32
  std::uint16_t type = 16;
  std::uint16_t number = 1;
  std::vector<std::uint16_t> languages = {0x0409};  ///< the first one's resource is the one given; others are empty
  bool has_resources = true;
};

FileBytes PeFile(const FileBytes& resource, const PeLayout& layout = {});

}  // namespace qxtest

#endif
