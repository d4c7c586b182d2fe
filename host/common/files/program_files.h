// Programs among the instrument's files.
#ifndef QXHOST_COMMON_FILES_PROGRAM_FILES_H
#define QXHOST_COMMON_FILES_PROGRAM_FILES_H

#include <windows.h>

#include <string>

#include "common/text/utf.h"

namespace host {

/// 0 when there is a file at the path; else the error code that starting a program from there fails with: 5 for a
/// folder, or why there is none. Any thread; for SetProgramLookup.
DWORD LookUpProgramFile(const WideString& path);

}  // namespace host

#endif
