// Paths as the calls take them, taken apart into names.
//
// - Every path starts at the root, with or without a separator in front: there is no current folder. "\" and "/"
//   separate alike, several in a row count as one.
// - Two separators in front would lead to another machine; there is no network (error 53), and no "\\?\" or "\\.\".
// - A name loses the dots and blanks at its end. A name "." is left out; ".." and other names of dots and blanks alone
//   do not exist (123): no path leads upwards.
// - Characters that no name holds, and halves of surrogate pairs, are error 123; so are wild cards, unless allowed in
//   the last name. A colon is among them: there are no drives.
// - Names as desktop Windows reserves them ("NUL", "CON") are names like any other.
// - MAX_PATH units or more, or a name of more than 255, are error 206; no path at all is error 3.
#ifndef QXHOST_COMMON_DISK_PATHS_H
#define QXHOST_COMMON_DISK_PATHS_H

#include <windows.h>

#include <vector>

#include "common/text/utf.h"

namespace host {

struct FilePath {
  std::vector<WideString> names;     ///< from the root on; the root itself has none
  bool ends_with_separator = false;  ///< then only a folder can be meant
};

enum class WildCards { kRefused, kInLastName };

/// Takes the path apart; returns 0 or the error. A last name with wild cards keeps its dots.
DWORD ParsePath(WideView path, WildCards wild_cards, FilePath* parsed);

/// Up to the terminating zero; empty for null.
WideView PathText(LPCWSTR path);

bool HasWildCards(WideView name);

}  // namespace host

#endif
