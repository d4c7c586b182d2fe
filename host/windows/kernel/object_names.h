// The names of this instrument's objects among all of the system's.
#ifndef QXHOST_WINDOWS_KERNEL_OBJECT_NAMES_H
#define QXHOST_WINDOWS_KERNEL_OBJECT_NAMES_H

#include <windows.h>

#include "common/text/utf.h"

namespace host {

/// The system's name of an object that this instrument knows by `name`: other instruments' objects have other names.
/// Empty for no name.
WideString SystemName(LPCWSTR name);

/// A name as the system's calls take it: null for none.
inline LPCWSTR NameOrNull(const WideString& name) { return name.empty() ? nullptr : name.c_str(); }

}  // namespace host

#endif
