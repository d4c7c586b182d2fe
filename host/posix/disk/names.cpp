#include "posix/disk/names.h"

#include <algorithm>

#include "common/text/text.h"
#include "common/text/utf.h"

namespace host {
namespace {

constexpr std::u16string_view kRefused = u"<>:\"|\\/";
constexpr std::u16string_view kWildCards = u"*?";
constexpr std::u16string_view kDroppedAtTheEnd = u". ";

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::u16string FoldName(std::u16string_view name) {
  std::u16string folded(name);
  for (char16_t& unit : folded) unit = UpperCase(unit);
  return folded;
}

std::u16string_view TrimName(std::u16string_view name) {
  return name.substr(0, name.find_last_not_of(kDroppedAtTheEnd) + 1);
}

bool HasGoodUnits(std::u16string_view name, bool wild_cards_allowed) {
  return std::all_of(name.begin(), name.end(), [&](char16_t unit) {
    if (kWildCards.find(unit) != std::u16string_view::npos) return wild_cards_allowed;
    return unit >= 0x20 && kRefused.find(unit) == std::u16string_view::npos;
  });
}

std::optional<std::string> ToHostName(std::u16string_view name) {
  std::string host_name = WideToUtf8(name);
  if (Utf8ToWide(host_name) != name) return std::nullopt;
  return host_name;
}

std::optional<std::u16string> FromHostName(std::string_view host_name) {
  std::u16string name = Utf8ToWide(host_name);
  const bool named_so = !name.empty() && name.size() <= kLongestName && TrimName(name).size() == name.size();
  if (!named_so || !HasGoodUnits(name, false) || WideToUtf8(name) != host_name) return std::nullopt;
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
