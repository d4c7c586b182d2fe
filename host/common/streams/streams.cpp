#include "common/streams/streams.h"

#include "common/calls/entry.h"
#include "common/calls/errors.h"

namespace host {
namespace {

// Only calls that wait for their result are offered: no overlapped structure, and a place for the count.
bool Synchronous(const void* buffer, DWORD bytes, DWORD* count, LPOVERLAPPED overlapped) {
  const bool synchronous = overlapped == nullptr && count != nullptr && (buffer != nullptr || bytes == 0);
  return synchronous || Fail(ERROR_INVALID_PARAMETER, false);
}

}  // namespace

BOOL Stream::Control(DWORD, const void*, DWORD, void*, DWORD, DWORD*) { return Fail(ERROR_NOT_SUPPORTED, FALSE); }

bool StreamHandle::Closes() {
  if (library_ == nullptr) return true;
  return Entry(
      library_, "close", true, [] { return CallValues(); }, [] { return TRUE; });
}

std::string StreamName(HANDLE handle) {
  const auto object = std::dynamic_pointer_cast<StreamHandle>(FindObject(handle));
  return object == nullptr ? std::string() : object->stream()->Name();
}

bool StreamCallsListed(HANDLE handle) {
  const auto object = std::dynamic_pointer_cast<StreamHandle>(FindObject(handle));
  return object != nullptr && object->stream()->CallsListed();
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped) {
  if (!Synchronous(buffer, bytes, read, overlapped)) return FALSE;
  *read = 0;
  const auto stream = FindStream(file);
  return stream == nullptr ? FALSE : stream->Read(buffer, bytes, read);
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped) {
  if (!Synchronous(buffer, bytes, written, overlapped)) return FALSE;
  *written = 0;
  const auto stream = FindStream(file);
  return stream == nullptr ? FALSE : stream->Write(buffer, bytes, written);
}

BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                     LPDWORD returned, LPOVERLAPPED overlapped) {
  const bool buffers = (in != nullptr || in_bytes == 0) && (out != nullptr || out_bytes == 0);
  if (!buffers || overlapped != nullptr) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  DWORD unasked = 0;
  DWORD* const count = returned == nullptr ? &unasked : returned;
  *count = 0;
  const auto stream = FindStream(device);
  return stream == nullptr ? FALSE : stream->Control(code, in, in_bytes, out, out_bytes, count);
}

}  // namespace host
