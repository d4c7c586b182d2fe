#include "qxsim/system/files.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "qxsim/start_error.h"
#include "qxsim/windows/owned_handle.h"

namespace qxsim {
namespace {

constexpr std::size_t kMostAtOnce = 1 << 20;

[[noreturn]] void Fail(const std::filesystem::path& file, DWORD error) {
  const std::error_code code(static_cast<int>(error), std::system_category());
  throw StartError("home: " + file.string() + ": " + code.message());
}

int ErrnoOf(DWORD error) {
  if (error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL) return ENOSPC;
  return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ? EACCES : EIO;
}

bool WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD count = 0;
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
    if (!::WriteFile(file, bytes.data(), size, &count, nullptr)) return false;
    bytes.remove_prefix(count);
  }
  return true;
}

/// A new file with this text, on the disk when it returns 0; else the error code.
DWORD WriteNewFile(const std::filesystem::path& path, const std::string& text) {
  const OwnedHandle file(
      ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  const bool written = file.good() && WriteAll(file.get(), text) && ::FlushFileBuffers(file.get());
  return written ? DWORD{ERROR_SUCCESS} : ::GetLastError();
}

}  // namespace

KeptFile::KeptFile(std::filesystem::path file) : file_(std::move(file)), new_file_(file_.wstring() + L".new") {
  if (::DeleteFileW(new_file_.c_str())) return;
  const DWORD error = ::GetLastError();
  if (error != ERROR_FILE_NOT_FOUND) Fail(new_file_, error);
}

std::optional<std::string> KeptFile::Read() const {
  const OwnedHandle file(
      ::CreateFileW(file_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.good()) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND) return std::nullopt;
    Fail(file_, error);
  }
  std::string text;
  std::string bytes(65536, '\0');
  DWORD count = 0;
  do {
    if (!::ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr)) {
      Fail(file_, ::GetLastError());
    }
    text.append(bytes, 0, count);
  } while (count > 0);
  return text;
}

int KeptFile::Replace(const std::string& text) const {
  DWORD error = WriteNewFile(new_file_, text);
  const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (error == ERROR_SUCCESS && !::MoveFileExW(new_file_.c_str(), file_.c_str(), how)) error = ::GetLastError();
  if (error == ERROR_SUCCESS) return 0;
  ::DeleteFileW(new_file_.c_str());
  return ErrnoOf(error);
}

std::FILE* OpenTextFile(const std::filesystem::path& file) { return ::_wfopen(file.c_str(), L"wb"); }

}  // namespace qxsim
