// Bytes as hexadecimal text, two characters a byte, high digit first.
#ifndef QXCM_COMMANDS_MEASURE_VALUETEXT_HEX_TEXT_H
#define QXCM_COMMANDS_MEASURE_VALUETEXT_HEX_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qxcm {

/// Appends `count` bytes to `text`, in upper case. Pure but for the append: any thread.
void BytesToHex(const std::uint8_t* bytes, std::size_t count, std::string* text);

/// Appends the bytes of a text, in either letter case, to `bytes`; an empty text has none. False: an odd number of
/// characters (nothing is appended), or a character that is no digit (the whole pairs before it have been appended).
bool HexToBytes(std::string_view text, std::vector<std::uint8_t>* bytes);

}  // namespace qxcm

#endif
