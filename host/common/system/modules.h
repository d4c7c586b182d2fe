// The libraries that are loaded beside the program, and their procedures, found by ordinal at run time.
#ifndef QXHOST_COMMON_SYSTEM_MODULES_H
#define QXHOST_COMMON_SYSTEM_MODULES_H

#include <windows.h>

#include <string_view>

namespace host {

/// Makes a procedure of a library known; the library counts as loaded from then on. `module` is its file's name with
/// ".dll"; `ordinal` is 1 to 65535. A second procedure of the same ordinal replaces the first. Any thread.
void RegisterProcedure(std::string_view module, WORD ordinal, FARPROC procedure);
/// Unloads the library with all its procedures.
void UnregisterModule(std::string_view module);

/// The loaded library of this name, in any letter case, with or without ".dll". Null: last error 87 (null, for the
/// program itself: it has no procedures to be found), 126 (none is loaded).
HMODULE GetModuleHandleW(LPCWSTR name);

/// A procedure of a library by MAKEINTRESOURCEW(ordinal). Null: last error 126 (no loaded library), 127 (it has no such
/// procedure; the libraries export by ordinal only, so a name never is one).
FARPROC GetProcAddressW(HMODULE module, LPCWSTR name);

}  // namespace host

#endif
