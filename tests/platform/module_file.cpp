#include "module_file.h"

#include <gtest/gtest.h>

namespace platform_test {

ModuleFile::ModuleFile(const qxtest::FileBytes& bytes) : path_(folder_.Path(TEXT("Module.dll"))) {
  const HANDLE file = CreateFileW(path(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  DWORD written = 0;
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  EXPECT_EQ(written, bytes.size());
  CloseHandle(file);
}

}  // namespace platform_test
