// What every host's registry calls make of their arguments: error codes, roots, and paths below a key.
#ifndef QXHOST_COMMON_REGISTRY_REGISTRY_ARGUMENTS_H
#define QXHOST_COMMON_REGISTRY_REGISTRY_ARGUMENTS_H

#include <windows.h>

#include <cstddef>

#include "common/registry/registry_tree.h"

namespace host {

/// An error as the calls return it.
constexpr LONG Code(DWORD error) { return static_cast<LONG>(error); }

/// An argument that may be null for an empty text.
inline WideView Text(LPCWSTR text) { return text == nullptr ? WideView() : WideView(text); }

/// The root's place in kRegistryRoots; their number for any other handle.
std::size_t RegistryRootPlace(HKEY key);
bool IsRegistryRoot(HKEY key);

/// Lengthens `path` by the names in `text`, parted by "\". Separators in a row and at the end count as one and as none.
/// Returns 0, or the error of a call with such a path: 161 or 87.
DWORD AppendRegistryPath(WideView text, RegistryPath* path);

}  // namespace host

#endif
