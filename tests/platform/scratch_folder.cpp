#include "scratch_folder.h"

namespace platform_test {
namespace {

bool IsDots(const WideString& name) { return name == TEXT(".") || name == TEXT(".."); }

}  // namespace

HANDLE FileCalls::Open(const WideString& name, DWORD access, DWORD share) const {
  return CreateFileW(Path(name).c_str(), access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

HANDLE FileCalls::Create(const WideString& name) const {
  return CreateFileW(Path(name).c_str(), kBothWays, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
}

void FileCalls::MakeFile(const WideString& name, const std::string& text) const {
  const HANDLE file = Create(name);
  ASSERT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
  EXPECT_TRUE(WriteBytes(file, text)) << GetLastError();
  CloseHandle(file);
}

void FileCalls::MakeFolder(const WideString& name) const {
  ASSERT_TRUE(CreateDirectoryW(Path(name).c_str(), nullptr)) << GetLastError();
}

std::string FileCalls::Content(const WideString& name) const {
  const HANDLE file = Open(name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
  if (file == INVALID_HANDLE_VALUE) return "cannot be opened: " + std::to_string(GetLastError());
  std::string text = ReadBytes(file, 1 << 20);
  CloseHandle(file);
  return text;
}

std::string ReadBytes(HANDLE file, DWORD bytes) {
  std::string text(bytes, '\0');
  DWORD read = 0;
  EXPECT_TRUE(ReadFile(file, &text[0], bytes, &read, nullptr)) << GetLastError();
  text.resize(read);
  return text;
}

bool WriteBytes(HANDLE file, std::string_view bytes) {
  DWORD written = 0;
  const BOOL done = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  return done && written == bytes.size();
}

std::vector<WIN32_FIND_DATAW> Search(const WideString& pattern) {
  std::vector<WIN32_FIND_DATAW> all;
  WIN32_FIND_DATAW found = {};
  const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return all;
  do {
    if (!IsDots(found.cFileName)) all.push_back(found);
  } while (FindNextFileW(search, &found));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
  EXPECT_TRUE(FindClose(search));
  return all;
}

std::vector<WideString> SearchNames(const WideString& pattern) {
  std::vector<WideString> names;
  for (const WIN32_FIND_DATAW& found : Search(pattern)) names.emplace_back(found.cFileName);
  return names;
}

}  // namespace platform_test
