#include "posix/files/wild_cards.h"

#include <vector>

#include "posix/disk/names.h"

namespace host {
namespace {

// Marks, spelled with characters that no name holds.
constexpr char16_t kAnyText = u'*';
constexpr char16_t kAnyTextBeforeTheLastDot = u'<';
constexpr char16_t kOneOrNoneAtTheEnd = u'>';
constexpr char16_t kDotOrEnd = u'"';

// What each wild card means depends on its neighbours: "*." stops at a name's last dot, a dot before "?" or "*" may be
// missing at the end of the name.
std::u16string MarkWildCards(std::u16string steps) {
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const bool has_before = i > 0;
    if (has_before && steps[i] == u'.' && steps[i - 1] == u'*') steps[i - 1] = kAnyTextBeforeTheLastDot;
    if (steps[i] != u'?' && steps[i] != u'*') continue;
    if (steps[i] == u'?') steps[i] = kOneOrNoneAtTheEnd;
    if (has_before && steps[i - 1] == u'.') steps[i - 1] = kDotOrEnd;
  }
  return steps;
}

// The places in the pattern that can be reached with what has been read of the name.
class Reached {
 public:
  explicit Reached(std::u16string_view steps) : steps_(steps), places_(steps.size() + 1) {}

  void Add(std::size_t place) { places_[place] = true; }
  bool Has(std::size_t place) const { return places_[place]; }

  /// Adds what is reached from there without reading anything more.
  void Close(bool at_dot, bool at_end) {
    for (std::size_t place = 0; place < steps_.size(); ++place) {
      const char16_t step = steps_[place];
      const bool text = step == kAnyText || step == kAnyTextBeforeTheLastDot;
      const bool one = step == kOneOrNoneAtTheEnd && (at_dot || at_end);
      if (places_[place] && (text || one || (step == kDotOrEnd && at_end))) places_[place + 1] = true;
    }
  }

 private:
  std::u16string_view steps_;
  std::vector<bool> places_;
};

// Reads one character at one place; returns whether the step takes it, and whether the place is left.
bool Takes(char16_t step, char16_t unit, bool last_dot, bool* stays) {
  *stays = step == kAnyText || step == kAnyTextBeforeTheLastDot;
  if (step == kAnyText) return true;
  if (step == kAnyTextBeforeTheLastDot) return !last_dot;
  if (step == kOneOrNoneAtTheEnd) return unit != u'.';
  return step == kDotOrEnd ? unit == u'.' : step == unit;
}

}  // namespace

NamePattern::NamePattern(std::u16string_view pattern) {
  std::u16string steps = FoldName(pattern.substr(0, pattern.find_last_not_of(u' ') + 1));
  const bool no_dot_in_name = steps.size() > 1 && steps.substr(steps.size() - 2) == u"*.";
  if (no_dot_in_name) {
    steps.pop_back();
  } else {
    steps.resize(steps.find_last_not_of(u'.') + 1);
  }
  steps_ = MarkWildCards(steps);
  if (no_dot_in_name) steps_.back() = kAnyTextBeforeTheLastDot;
  every_name_ = pattern == u"*" || pattern == u"*.*";
}

bool NamePattern::Matches(std::u16string_view folded) const {
  if (every_name_) return true;
  const std::size_t last_dot = folded.rfind(u'.');
  Reached reached(steps_);
  reached.Add(0);
  for (std::size_t i = 0; i < folded.size(); ++i) {
    reached.Close(folded[i] == u'.', false);
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
