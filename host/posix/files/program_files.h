// Programs among the instrument's files.
#ifndef QXHOST_POSIX_FILES_PROGRAM_FILES_H
#define QXHOST_POSIX_FILES_PROGRAM_FILES_H

#include <windows.h>

#include <string>

namespace host {

/// 0 when there is a file at the path; else the error code that starting a program from there fails with: 5 for a
/// folder, or why there is none. Any thread; for SetProgramLookup.
DWORD LookUpProgramFile(const std::u16string& path);

}  // namespace host

#endif
