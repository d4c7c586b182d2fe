// Checks of single JSON values that several sections of the state share.
#ifndef QXHOST_INSTRUMENT_JSON_VALUES_H
#define QXHOST_INSTRUMENT_JSON_VALUES_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "instrument/state.h"

namespace host::instrument {

/// Whether it is a whole number from lowest to highest.
bool IsWhole(const Json& value, std::int64_t lowest, std::int64_t highest);

/// The bytes of a text of hexadecimal digits. Throws StateError.
std::vector<std::uint8_t> BytesOf(const Json& value);

/// Gives every member of a patch to `merge`. Throws StateError, with the member's name, for what is
/// no object and for what `merge` throws.
void ForEachMember(const Json& patch, const std::function<void(const std::string& name, const Json& member)>& merge);

}  // namespace host::instrument

#endif
