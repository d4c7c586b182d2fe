// Names of files and folders: what the platform allows, and letter case.
//
// Names are compared by their units in simple upper case and kept as they were first written.
#ifndef QXHOST_COMMON_DISK_NAMES_H
#define QXHOST_COMMON_DISK_NAMES_H

#include <cstddef>

#include "common/text/utf.h"

namespace host {

constexpr std::size_t kLongestName = 255;  ///< units

/// The name in upper case, by which names are compared and sorted.
WideString FoldName(WideView name);

/// Without the dots and blanks at its end, which the platform drops.
WideView TrimName(WideView name);

/// Free of what no name holds: controls, halves of surrogate pairs and any of < > : " | \ /, and, unless allowed, the
/// wild cards ? and *.
bool HasGoodUnits(WideView name, bool wild_cards_allowed);

/// Whether a name that is found on this machine is one that the platform has, too.
bool IsPlatformName(WideView name);

}  // namespace host

#endif
