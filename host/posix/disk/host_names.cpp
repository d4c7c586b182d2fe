#include "posix/disk/host_names.h"

#include <algorithm>

#include "common/disk/names.h"
#include "common/text/text.h"
#include "common/text/utf.h"

namespace host {
namespace {

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::optional<std::string> ToHostName(std::u16string_view name) {
  std::string host_name = WideToUtf8(name);
  if (Utf8ToWide(host_name) != name) return std::nullopt;
  return host_name;
}

std::optional<std::u16string> FromHostName(std::string_view host_name) {
  std::u16string name = Utf8ToWide(host_name);
  if (!IsPlatformName(name) || WideToUtf8(name) != host_name) return std::nullopt;
  return name;
}

bool IsSameName(std::string_view host_name, std::u16string_view folded) {
  if (host_name.size() < folded.size()) return false;
  if (!IsAscii(host_name)) {
    const std::u16string name = Utf8ToWide(host_name);
    return FoldName(name) == folded && WideToUtf8(name) == host_name;
  }
  return std::equal(host_name.begin(), host_name.end(), folded.begin(), folded.end(),
                    [](char c, char16_t unit) { return UpperCase(static_cast<unsigned char>(c)) == unit; });
}

}  // namespace host
