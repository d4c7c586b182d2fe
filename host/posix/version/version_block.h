// The blocks that a version resource is made of, each with a name, a value and blocks below it.
#ifndef QXHOST_POSIX_VERSION_VERSION_BLOCK_H
#define QXHOST_POSIX_VERSION_VERSION_BLOCK_H

#include <optional>
#include <string_view>

#include "posix/version/bytes.h"

namespace host {

struct VersionValue {
  Bytes bytes;
  bool text = false;  ///< its length is told in 16-bit units, else in bytes
};

/// The value of the block that the path leads to: names with a "\" before each, compared without regard to letter case;
/// "\" and the empty path mean the resource itself. Nothing when there is no such block. The value lies in the resource
/// whatever that says of its length, and is empty when the block has none.
std::optional<VersionValue> FindVersionValue(Bytes resource, std::u16string_view path);

}  // namespace host

#endif
