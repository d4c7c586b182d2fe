#include "common/disk/wild_cards.h"

#include <vector>

#include "common/disk/names.h"

namespace host {
namespace {

// Marks, spelled with characters that no name holds.
constexpr WCHAR kAnyText = TEXT('*');
constexpr WCHAR kAnyTextBeforeTheLastDot = TEXT('<');
constexpr WCHAR kOneOrNoneAtTheEnd = TEXT('>');
constexpr WCHAR kDotOrEnd = TEXT('"');

// What each wild card means depends on its neighbours: "*." stops at a name's last dot, a dot before "?" or "*" may be
// missing at the end of the name.
WideString MarkWildCards(WideString steps) {
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const bool has_before = i > 0;
    if (has_before && steps[i] == TEXT('.') && steps[i - 1] == TEXT('*')) steps[i - 1] = kAnyTextBeforeTheLastDot;
    if (steps[i] != TEXT('?') && steps[i] != TEXT('*')) continue;
    if (steps[i] == TEXT('?')) steps[i] = kOneOrNoneAtTheEnd;
    if (has_before && steps[i - 1] == TEXT('.')) steps[i - 1] = kDotOrEnd;
  }
  return steps;
}

// The places in the pattern that can be reached with what has been read of the name.
class Reached {
 public:
  explicit Reached(WideView steps) : steps_(steps), places_(steps.size() + 1) {}

  void Add(std::size_t place) { places_[place] = true; }
  bool Has(std::size_t place) const { return places_[place]; }

  /// Adds what is reached from there without reading anything more.
  void Close(bool at_dot, bool at_end) {
    for (std::size_t place = 0; place < steps_.size(); ++place) {
      const WCHAR step = steps_[place];
      const bool text = step == kAnyText || step == kAnyTextBeforeTheLastDot;
      const bool one = step == kOneOrNoneAtTheEnd && (at_dot || at_end);
      if (places_[place] && (text || one || (step == kDotOrEnd && at_end))) places_[place + 1] = true;
    }
  }

 private:
  WideView steps_;
  std::vector<bool> places_;
};

// Reads one character at one place; returns whether the step takes it, and whether the place is left.
bool Takes(WCHAR step, WCHAR unit, bool last_dot, bool* stays) {
  *stays = step == kAnyText || step == kAnyTextBeforeTheLastDot;
  if (step == kAnyText) return true;
  if (step == kAnyTextBeforeTheLastDot) return !last_dot;
  if (step == kOneOrNoneAtTheEnd) return unit != TEXT('.');
  return step == kDotOrEnd ? unit == TEXT('.') : step == unit;
}

}  // namespace

NamePattern::NamePattern(WideView pattern) {
  WideString steps = FoldName(pattern.substr(0, pattern.find_last_not_of(TEXT(' ')) + 1));
  const bool no_dot_in_name = steps.size() > 1 && steps.substr(steps.size() - 2) == TEXT("*.");
  if (no_dot_in_name) {
    steps.pop_back();
  } else {
    steps.resize(steps.find_last_not_of(TEXT('.')) + 1);
  }
  steps_ = MarkWildCards(steps);
  if (no_dot_in_name) steps_.back() = kAnyTextBeforeTheLastDot;
  every_name_ = pattern == TEXT("*") || pattern == TEXT("*.*");
}

bool NamePattern::Matches(WideView folded) const {
  if (every_name_) return true;
  const std::size_t last_dot = folded.rfind(TEXT('.'));
  Reached reached(steps_);
  reached.Add(0);
  for (std::size_t i = 0; i < folded.size(); ++i) {
    reached.Close(folded[i] == TEXT('.'), false);
    Reached next(steps_);
    for (std::size_t place = 0; place < steps_.size(); ++place) {
      bool stays = false;
      if (reached.Has(place) && Takes(steps_[place], folded[i], i == last_dot, &stays))
        next.Add(stays ? place : place + 1);
    }
    reached = next;
  }
  reached.Close(false, true);
  return reached.Has(steps_.size());
}

}  // namespace host
