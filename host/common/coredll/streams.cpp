// COREDLL: opening, reading and writing devices and files, as the library calls them.
#include <windows.h>

#include "common/calls/coredll_call.h"
#include "common/streams/devices.h"

using host::Buffer;
using host::CoreDllCall;
using host::FailsWith;
using host::kUnlisted;
using host::ListedOn;

extern "C" {

HANDLE COREDLL(CreateFileW)(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                            DWORD flags, HANDLE template_file) {
  return CoreDllCall("CreateFileW", !host::ListsItsOwnCalls(name), FailsWith::kMinusOne, host::CreateFileW, name,
                     access, share, security, disposition, flags, template_file);
}

BOOL COREDLL(DeviceIoControl)(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                              LPDWORD returned, LPOVERLAPPED overlapped) {
  return CoreDllCall("DeviceIoControl", kUnlisted, host::DeviceIoControl, device, code, in, in_bytes, out, out_bytes,
                     returned, overlapped);
}

BOOL COREDLL(ReadFile)(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped) {
  return CoreDllCall("ReadFile", ListedOn(file), host::ReadFile, file, Buffer(buffer), bytes, read, overlapped);
}

BOOL COREDLL(WriteFile)(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped) {
  return CoreDllCall("WriteFile", ListedOn(file), host::WriteFile, file, buffer, bytes, written, overlapped);
}

}  // extern "C"
