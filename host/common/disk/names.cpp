#include "common/disk/names.h"

#include <algorithm>

#include "common/text/text.h"

namespace host {
namespace {

constexpr WideView kRefused = TEXT("<>:\"|\\/");
constexpr WideView kWildCards = TEXT("*?");
constexpr WideView kDroppedAtTheEnd = TEXT(". ");

}  // namespace

WideString FoldName(WideView name) {
  WideString folded(name);
  for (WCHAR& unit : folded) unit = UpperCase(unit);
  return folded;
}

WideView TrimName(WideView name) { return name.substr(0, name.find_last_not_of(kDroppedAtTheEnd) + 1); }

bool HasGoodUnits(WideView name, bool wild_cards_allowed) {
  const bool each_good = std::all_of(name.begin(), name.end(), [&](WCHAR unit) {
    if (kWildCards.find(unit) != WideView::npos) return wild_cards_allowed;
    return unit >= 0x20 && kRefused.find(unit) == WideView::npos;
  });
  return each_good && IsWellFormed(name);
}

bool IsPlatformName(WideView name) {
  const bool trimmed = !name.empty() && TrimName(name).size() == name.size();
  return trimmed && name.size() <= kLongestName && HasGoodUnits(name, false);
}

}  // namespace host
