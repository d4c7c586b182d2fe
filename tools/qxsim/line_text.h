// Texts and bytes as the API shows them.
#ifndef QXSIM_LINE_TEXT_H
#define QXSIM_LINE_TEXT_H

#include <string>
#include <string_view>

namespace qxsim {

/// Bytes of a line as UTF-8: its ANSI text decoded with the code page, control characters as \xNN.
std::string ReadableText(std::string_view bytes);

/// "0A1B": two upper-case digits a byte.
std::string HexOf(std::string_view bytes);

/// A time in milliseconds, to the microsecond.
double ShownTime(double milliseconds);

}  // namespace qxsim

#endif
