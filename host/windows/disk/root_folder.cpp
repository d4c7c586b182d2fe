#include "windows/disk/root_folder.h"

#include <system_error>

#include "windows/disk/entries.h"

namespace host {
namespace {

/// Throws the last error unless `good`.
void Expect(bool good, const std::string& folder) {
  if (!good) throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), folder);
}

// The whole path in the form that the system takes as it stands.
WideString WholePath(const WideString& folder) {
  WideString whole(::GetFullPathNameW(folder.c_str(), 0, nullptr, nullptr), TEXT('\0'));
  whole.resize(::GetFullPathNameW(folder.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  const bool as_it_stands = whole.rfind(TEXT("\\\\"), 0) == 0;
  return as_it_stands ? whole : TEXT("\\\\?\\") + whole;
}

}  // namespace

std::shared_ptr<const RootFolder> OpenRootFolder(const std::string& folder) {
  auto root = std::make_shared<RootFolder>();
  root->pin = SystemHandle(::CreateFileW(WholePath(Utf8ToWide(folder)).c_str(), FILE_LIST_DIRECTORY,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  Expect(root->pin.valid(), folder);
  FileFacts facts;
  Expect(ReadFacts(root->pin.get(), &facts), folder);
  if (!facts.folder()) SetLastError(ERROR_DIRECTORY);
  Expect(facts.folder(), folder);
  root->path = FinalPath(root->pin.get());
  Expect(!root->path.empty(), folder);
  if (root->path.back() == TEXT('\\')) root->path.pop_back();
  return root;
}

}  // namespace host
