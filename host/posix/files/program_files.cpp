#include "posix/files/program_files.h"

#include "posix/calls/errors.h"
#include "posix/files/files.h"

namespace host {

DWORD LookUpProgramFile(const std::u16string& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return ThreadError();
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace host
