#include "common/registry/registry_arguments.h"

#include <cstdint>
#include <iterator>

namespace host {

std::size_t RegistryRootPlace(HKEY key) {
  const auto first = reinterpret_cast<std::uintptr_t>(HKEY_CLASSES_ROOT);
  const auto place = reinterpret_cast<std::uintptr_t>(key) - first;
  return place < std::size(kRegistryRoots) ? place : std::size(kRegistryRoots);
}

bool IsRegistryRoot(HKEY key) { return RegistryRootPlace(key) < std::size(kRegistryRoots); }

DWORD AppendRegistryPath(WideView text, RegistryPath* path) {
  if (!text.empty() && text[0] == TEXT('\\')) return ERROR_BAD_PATHNAME;
  while (!text.empty()) {
    const std::size_t end = text.find(TEXT('\\'));
    if (end != 0) path->emplace_back(text.substr(0, end));
    text = end == WideView::npos ? WideView() : text.substr(end + 1);
  }
  return GoodRegistryPath(*path) ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
}

}  // namespace host
