#include "common/files/program_files.h"

#include "common/calls/errors.h"
#include "common/files/files.h"

namespace host {

DWORD LookUpProgramFile(const WideString& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return GetLastError();
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace host
