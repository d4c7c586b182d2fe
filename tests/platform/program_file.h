// Programs on the instrument, for tests that start them.
#ifndef QXTEST_PLATFORM_PROGRAM_FILE_H
#define QXTEST_PLATFORM_PROGRAM_FILE_H

#include <windows.h>

namespace platform_test {

/// The instrument has this one program, by its whole path, and its folder for as long as the object lives.
class ProgramFile {
 public:
  explicit ProgramFile(LPCWSTR path);
  ProgramFile(const ProgramFile&) = delete;
  ProgramFile& operator=(const ProgramFile&) = delete;
  ~ProgramFile();
};

}  // namespace platform_test

#endif
