#include "contained_files.h"

#include "common/text/utf.h"

namespace platform_test {
namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

bool ContainedFiles::Tells(const std::string& seen) {
  return Holds(seen, Canary::kSecret) || Holds(seen, std::string("[") + Canary::kSecretFile + "]");
}

std::string ContainedFiles::TakeContent(HANDLE file) {
  if (file == INVALID_HANDLE_VALUE) return {};
  DWORD read = 0;
  std::string text(4096, '\0');
  ReadFile(file, text.data(), 4096, &read, nullptr);
  CloseHandle(file);
  text.resize(read);
  return text;
}

HANDLE ContainedFiles::OpenPath(const WideString& path, DWORD access, DWORD disposition) {
  return CreateFileW(path.c_str(), access, 0, nullptr, disposition, 0, nullptr);
}

std::string ContainedFiles::Listed(const WideString& pattern) {
  std::string names;
  for (const WideString& name : SearchNames(pattern)) names += "[" + host::WideToUtf8(name) + "]";
  return names;
}

std::string ContainedFiles::TryAll(const WideString& path) const {
  const WideString own = Path(TEXT("own")), copy = Path(TEXT("copy"));
  std::string seen = TakeContent(OpenPath(path, GENERIC_READ, OPEN_EXISTING));
  if (CopyFileW(path.c_str(), copy.c_str(), FALSE)) seen += TakeContent(OpenPath(copy, GENERIC_READ, OPEN_EXISTING));
  seen += Listed(path) + Listed(path + TEXT("\\*")) + Listed(path + TEXT("/*.*"));
  GetFileAttributesW(path.c_str());
  if (const HANDLE file = OpenPath(path, GENERIC_WRITE, OPEN_EXISTING); file != INVALID_HANDLE_VALUE) {
    WriteBytes(file, "changed");
    CloseHandle(file);
  }
  CopyFileW(own.c_str(), path.c_str(), FALSE);
  DeleteFileW(path.c_str());
  CloseHandle(OpenPath(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW));
  DeleteFileW(copy.c_str());
  if (MoveFileW(path.c_str(), copy.c_str())) seen += TakeContent(OpenPath(copy, GENERIC_READ, OPEN_EXISTING));
  DeleteFileW(path.c_str());
  CreateDirectoryW(path.c_str(), nullptr);
  RemoveDirectoryW(path.c_str());
  if (MoveFileW(own.c_str(), path.c_str())) MoveFileW(path.c_str(), own.c_str());
  return seen;
}

}  // namespace platform_test
