// Names of files and folders: what the platform allows, letter case, and how a name is spelled on this machine.
//
// Names are compared by their units in simple upper case and kept as they were first written. On this machine they are
// UTF-8. What the platform could not name (other encodings, refused characters, a blank or a dot at the end) does not
// exist for the instrument.
#ifndef QXHOST_POSIX_DISK_NAMES_H
#define QXHOST_POSIX_DISK_NAMES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace host {

constexpr std::size_t kLongestName = 255;  ///< units

/// The name in upper case, by which names are compared and sorted.
std::u16string FoldName(std::u16string_view name);

/// Without the dots and blanks at its end, which the platform drops.
std::u16string_view TrimName(std::u16string_view name);

/// Free of what no name holds: controls and any of < > : " | \ /, and, unless allowed, the wild cards ? and *.
bool HasGoodUnits(std::u16string_view name, bool wild_cards_allowed);

/// The name on this machine; nothing when it holds half of a surrogate pair.
std::optional<std::string> ToHostName(std::u16string_view name);

/// The name on the instrument; nothing when the platform has no such name.
std::optional<std::u16string> FromHostName(std::string_view host_name);

/// Whether a name on this machine is the one whose folded form is given.
bool IsSameName(std::string_view host_name, std::u16string_view folded);

}  // namespace host

#endif
