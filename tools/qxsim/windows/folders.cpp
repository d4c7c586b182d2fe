#include "qxsim/system/folders.h"

#include <windows.h>

#include <cstdlib>
#include <random>
#include <string>
#include <system_error>

#include "qxsim/start_error.h"
#include "qxsim/windows/owned_handle.h"

namespace qxsim {
namespace {

namespace fs = std::filesystem;

constexpr int kTries = 100;

[[noreturn]] void Refuse(const fs::path& path, const std::error_code& error) {
  throw StartError("home: " + path.string() + ": " + error.message());
}

std::error_code ErrorCode(DWORD error) { return {static_cast<int>(error), std::system_category()}; }

/// A folder named in the environment; empty when the variable is not there or names none from the top of a drive.
fs::path FolderIn(const wchar_t* variable) {
  const wchar_t* value = ::_wgetenv(variable);
  const fs::path folder = value == nullptr ? L"" : value;
  return folder.has_root_directory() ? fs::absolute(folder) : fs::path();
}

// Whoever starts the program from Posix cannot name the folder as Windows does, in TMP.
fs::path TemporaryFolder() {
  const fs::path folder = FolderIn(L"QXSIM_TMPDIR");
  return folder.empty() ? fs::temp_directory_path() : folder;
}

/// Nobody else can open the file while it is open here.
class LockedFile final : public FolderLock {
 public:
  explicit LockedFile(const fs::path& file)
      : file_(::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr)) {
    if (file_.good()) return;
    const DWORD error = ::GetLastError();
    if (error != ERROR_SHARING_VIOLATION) Refuse(file, ErrorCode(error));
    throw StartError("home: " + file.parent_path().string() + ": in use by another qxsim");
  }

 private:
  const OwnedHandle file_;
};

}  // namespace

fs::path MakeTemporaryFolder() {
  const fs::path parent = TemporaryFolder();
  std::random_device random;
  for (int i = 0; i < kTries; ++i) {
    const fs::path folder = parent / ("qxsim-" + std::to_string(random()));
    if (::CreateDirectoryW(folder.c_str(), nullptr)) return folder;
    const DWORD error = ::GetLastError();
    if (error != ERROR_ALREADY_EXISTS) Refuse(folder, ErrorCode(error));
  }
  Refuse(parent, ErrorCode(ERROR_ALREADY_EXISTS));
}

fs::path UserDataFolder() {
  for (const wchar_t* variable : {L"LOCALAPPDATA", L"APPDATA"}) {
    if (fs::path folder = FolderIn(variable); !folder.empty()) return folder;
  }
  throw StartError("home: neither LOCALAPPDATA nor APPDATA is set; say --home");
}

std::unique_ptr<FolderLock> FolderLock::Take(const fs::path& file) { return std::make_unique<LockedFile>(file); }

}  // namespace qxsim
