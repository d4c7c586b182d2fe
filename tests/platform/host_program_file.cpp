// The instrument's programs on this host: what the look-up says is there.
#include <string>

#include "common/system/programs.h"
#include "program_file.h"

namespace platform_test {

ProgramFile::ProgramFile(LPCWSTR path) {
  const std::u16string program = path;
  const std::u16string folder = program.substr(0, program.rfind(u'\\'));
  host::SetProgramLookup([program, folder](const std::u16string& asked) -> DWORD {
    if (asked == program) return ERROR_SUCCESS;
    if (asked == folder) return ERROR_ACCESS_DENIED;
    const std::size_t slash = asked.rfind(u'\\');
    const std::u16string parent = slash == std::u16string::npos ? u"" : asked.substr(0, slash);
    return parent == folder || parent.empty() ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
  });
}

ProgramFile::~ProgramFile() { host::SetProgramLookup(nullptr); }

}  // namespace platform_test
