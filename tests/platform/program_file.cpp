// The instrument's programs: what the host's look-up says is there.
#include "program_file.h"

#include <string>

#include "common/system/programs.h"

namespace platform_test {

ProgramFile::ProgramFile(LPCWSTR path) {
  const host::WideString program = path;
  const host::WideString folder = program.substr(0, program.rfind(TEXT('\\')));
  host::SetProgramLookup([program, folder](const host::WideString& asked) -> DWORD {
    if (asked == program) return ERROR_SUCCESS;
    if (asked == folder) return ERROR_ACCESS_DENIED;
    const std::size_t slash = asked.rfind(TEXT('\\'));
    const host::WideString parent = slash == host::WideString::npos ? TEXT("") : asked.substr(0, slash);
    return parent == folder || parent.empty() ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  });
}

ProgramFile::~ProgramFile() { host::SetProgramLookup(nullptr); }

}  // namespace platform_test
