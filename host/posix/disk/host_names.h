// How names of files and folders are spelled on this machine: in UTF-8.
//
// What the platform could not name (other encodings, refused characters, a blank or a dot at the end) does not exist
// for the instrument.
#ifndef QXHOST_POSIX_DISK_HOST_NAMES_H
#define QXHOST_POSIX_DISK_HOST_NAMES_H

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The name on this machine; nothing when it holds half of a surrogate pair.
std::optional<std::string> ToHostName(std::u16string_view name);

/// The name on the instrument; nothing when the platform has no such name.
std::optional<std::u16string> FromHostName(std::string_view host_name);

/// Whether a name on this machine is the one whose folded form is given.
bool IsSameName(std::string_view host_name, std::u16string_view folded);

}  // namespace host

#endif
