// Which names a search pattern means.
//
// "*" stands for any text and "?" for one character; at the end of a name or before a dot "?" may stand for none. "*.*"
// means every name, with a dot or without, and "*." every name without one. Letter case does not matter.
#ifndef QXHOST_COMMON_DISK_WILD_CARDS_H
#define QXHOST_COMMON_DISK_WILD_CARDS_H

#include "common/text/utf.h"

namespace host {

class NamePattern {
 public:
  explicit NamePattern(WideView pattern);
  /// Takes the name in upper case (FoldName). Time grows with the product of the lengths at worst.
  bool Matches(WideView folded) const;

 private:
  WideString steps_;  // upper case, with the marks below for what the wild cards mean where they stand
  bool every_name_ = false;
};

}  // namespace host

#endif
