// One line of an open file, as RD_FIL answers it.
#ifndef QXCM_COMMANDS_SERVICES_LINE_READER_H
#define QXCM_COMMANDS_SERVICES_LINE_READER_H

#include <string>

#include "platform/windows_api.h"

namespace qxcm {

/// Reads a line at the file's position, which moves behind the line's end (CR, LF, CR LF or LF CR) or stays at the
/// Ctrl-Z that ends it. `line` becomes its text with "," and "\" escaped.
/// Returns the platform's error code: 38 at the end of the file or at a Ctrl-Z, 11 for a line that is too long for a
/// reply once it is escaped (it has been read all the same).
///
/// A line is looked for in the next 1011 bytes only: a longer one is answered in pieces, and an end of two bytes that
/// falls apart between two pieces gives an empty line (kept).
DWORD ReadLine(HANDLE file, std::string* line);

}  // namespace qxcm

#endif
