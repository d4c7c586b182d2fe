// An empty folder of the instrument for one test, and short words for the file calls.
#ifndef QXTEST_PLATFORM_SCRATCH_FOLDER_H
#define QXTEST_PLATFORM_SCRATCH_FOLDER_H

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace platform_test {

using WideString = std::basic_string<WCHAR>;

/// Made empty for each test and removed with all that is in it.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// The path of something in it: Path(TEXT("a\\b.txt")).
  WideString Path(const WideString& name) const { return path_ + TEXT('\\') + name; }
  const WideString& path() const { return path_; }
  /// Where the folder is on this machine.
  const std::string& host_path() const { return host_path_; }

 private:
  WideString path_;
  std::string host_path_;
};

/// What a call that takes paths is tested with.
class FileCalls : public testing::Test {
 protected:
  static constexpr DWORD kBothWays = GENERIC_READ | GENERIC_WRITE;

  WideString Path(const WideString& name) const { return folder_.Path(name); }

  HANDLE Open(const WideString& name, DWORD access = kBothWays, DWORD share = 0) const;
  HANDLE Create(const WideString& name) const;
  /// Makes a file that holds the text.
  void MakeFile(const WideString& name, const std::string& text = "text") const;
  void MakeFolder(const WideString& name) const;
  std::string Content(const WideString& name) const;
  DWORD Attributes(const WideString& name) const { return GetFileAttributesW(Path(name).c_str()); }
  bool Exists(const WideString& name) const { return Attributes(name) != INVALID_FILE_ATTRIBUTES; }
  bool Copy(const WideString& from, const WideString& to, BOOL fail_if_exists = TRUE) const {
    return CopyFileW(Path(from).c_str(), Path(to).c_str(), fail_if_exists) != FALSE;
  }
  bool Move(const WideString& from, const WideString& to) const {
    return MoveFileW(Path(from).c_str(), Path(to).c_str()) != FALSE;
  }
  bool Delete(const WideString& name) const { return DeleteFileW(Path(name).c_str()) != FALSE; }
  bool Remove(const WideString& name) const { return RemoveDirectoryW(Path(name).c_str()) != FALSE; }

  ScratchFolder folder_;
};

std::string ReadBytes(HANDLE file, DWORD bytes);
bool WriteBytes(HANDLE file, std::string_view bytes);
/// What a search tells, in its order; "." and "..", which some platforms list, are left out.
std::vector<WIN32_FIND_DATAW> Search(const WideString& pattern);
std::vector<WideString> SearchNames(const WideString& pattern);

/// The last error of a call that must have failed: Error(DeleteFileW(...)); 0 when it has not.
inline DWORD Error(bool succeeded) { return succeeded ? 0 : GetLastError(); }
inline DWORD Error(HANDLE handle) { return handle == INVALID_HANDLE_VALUE ? GetLastError() : 0; }
inline DWORD Error(DWORD all_bits_set) { return all_bits_set == 0xFFFFFFFF ? GetLastError() : 0; }

}  // namespace platform_test

#endif
