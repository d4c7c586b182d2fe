// COREDLL: files and folders by path, searches, and the position in a file, as the library calls them.
#include "common/files/files.h"

#include <windows.h>

#include "common/calls/coredll_call.h"

using host::CallValues;
using host::CoreDllCall;
using host::Entry;
using host::FailsWith;
using host::kListed;

namespace {

// A call on a search: what it works on is the search's pattern.
BOOL SearchCall(const char* name, HANDLE search, BOOL (*real)(HANDLE, LPWIN32_FIND_DATAW), LPWIN32_FIND_DATAW found) {
  const auto args = [&] {
    CallValues values;
    host::AppendArgument(search, &values);
    return values;
  };
  return Entry(
      "COREDLL", name, kListed, args, [&] { return real(search, found); }, FailsWith::kZero,
      [&] { return host::SearchName(search); });
}

}  // namespace

extern "C" {

DWORD COREDLL(SetFilePointer)(HANDLE file, LONG distance, LONG* distance_high, DWORD method) {
  return CoreDllCall("SetFilePointer", kListed, FailsWith::kMinusOne, host::SetFilePointer, file, distance,
                     distance_high, method);
}

DWORD COREDLL(GetFileAttributesW)(LPCWSTR path) {
  return CoreDllCall("GetFileAttributesW", kListed, FailsWith::kMinusOne, host::GetFileAttributesW, path);
}

BOOL COREDLL(CreateDirectoryW)(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
  return CoreDllCall("CreateDirectoryW", kListed, host::CreateDirectoryW, path, security);
}

BOOL COREDLL(RemoveDirectoryW)(LPCWSTR path) {
  return CoreDllCall("RemoveDirectoryW", kListed, host::RemoveDirectoryW, path);
}

BOOL COREDLL(DeleteFileW)(LPCWSTR path) { return CoreDllCall("DeleteFileW", kListed, host::DeleteFileW, path); }

BOOL COREDLL(CopyFileW)(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists) {
  return CoreDllCall("CopyFileW", kListed, host::CopyFileW, source, destination, fail_if_exists);
}

BOOL COREDLL(MoveFileW)(LPCWSTR source, LPCWSTR destination) {
  return CoreDllCall("MoveFileW", kListed, host::MoveFileW, source, destination);
}

HANDLE COREDLL(FindFirstFileW)(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
  return CoreDllCall("FindFirstFileW", kListed, FailsWith::kMinusOne, host::FindFirstFileW, pattern, found);
}

BOOL COREDLL(FindNextFileW)(HANDLE search, LPWIN32_FIND_DATAW found) {
  return SearchCall("FindNextFileW", search, host::FindNextFileW, found);
}

BOOL COREDLL(FindClose)(HANDLE search) {
  return SearchCall(
      "FindClose", search, [](HANDLE closed, LPWIN32_FIND_DATAW) { return host::FindClose(closed); }, nullptr);
}

}  // extern "C"
