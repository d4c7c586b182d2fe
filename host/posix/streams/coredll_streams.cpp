// COREDLL: opening, reading and writing devices and files, as the library calls them.
#include <windows.h>

#include "posix/calls/coredll_call.h"
#include "posix/streams/devices.h"

using host::Buffer;
using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::ListedOn;

extern "C" {

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE template_file) {
  return CoreDllCall("CreateFileW", kListed, FailsWith::kMinusOne, host::CreateFileW, name, access, share, security,
                     disposition, flags, template_file);
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped) {
  return CoreDllCall("ReadFile", ListedOn(file), host::ReadFile, file, Buffer(buffer), bytes, read, overlapped);
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped) {
  return CoreDllCall("WriteFile", ListedOn(file), host::WriteFile, file, buffer, bytes, written, overlapped);
}

}  // extern "C"
