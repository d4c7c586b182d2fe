#include "common/version/version.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "common/calls/errors.h"
#include "common/streams/devices.h"
#include "posix/version/executable.h"
#include "posix/version/version_block.h"

namespace host {
namespace {

constexpr std::size_t kLargestFile = std::size_t{64} << 20;
constexpr DWORD kChunk = 64 * 1024;
constexpr DWORD kBlockHeader = 6;

class OpenedFile {
 public:
  explicit OpenedFile(LPCWSTR name)
      : handle_(host::CreateFileW(name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;
  ~OpenedFile() {
    if (handle_ != INVALID_HANDLE_VALUE) host::CloseHandle(handle_);
  }

  /// All of the file; false with the last error set.
  bool Read(std::vector<std::uint8_t>* bytes) {
    if (handle_ == INVALID_HANDLE_VALUE) return false;
    for (;;) {
      const std::size_t have = bytes->size();
      if (have > kLargestFile) return Fail(ERROR_NOT_ENOUGH_MEMORY, false);
      bytes->resize(have + kChunk);
      DWORD read = 0;
      if (!host::ReadFile(handle_, bytes->data() + have, kChunk, &read, nullptr)) return false;
      bytes->resize(have + read);
      if (read == 0) return true;
    }
  }

 private:
  const HANDLE handle_;
};

/// A device would be opened and read like a file, and might never come to an end.
bool IsDeviceName(std::u16string_view name) { return !name.empty() && name.back() == u':'; }

/// The file's resource, as a part of `bytes`; false with the last error set.
bool Load(LPCWSTR file, std::vector<std::uint8_t>* bytes, Bytes* resource) {
  if (file == nullptr) return Fail(ERROR_INVALID_PARAMETER, false);
  if (IsDeviceName(file)) return Fail(ERROR_FILE_NOT_FOUND, false);
  if (!OpenedFile(file).Read(bytes)) return false;
  const DWORD error = FindVersionResource({bytes->data(), bytes->size()}, resource);
  return error == ERROR_SUCCESS || Fail(error, false);
}

}  // namespace

DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD unused) {
  if (unused != nullptr) *unused = 0;
  std::vector<std::uint8_t> bytes;
  Bytes resource;
  return Load(file, &bytes, &resource) ? static_cast<DWORD>(resource.size()) : 0;
}

BOOL GetFileVersionInfoW(LPCWSTR file, DWORD, DWORD size, LPVOID buffer) {
  if (buffer == nullptr) return Fail(ERROR_INVALID_DATA, FALSE);
  if (size < kBlockHeader) return Fail(ERROR_INSUFFICIENT_BUFFER, FALSE);
  std::vector<std::uint8_t> bytes;
  Bytes resource;
  if (!Load(file, &bytes, &resource)) return FALSE;
  const Bytes copied = resource.First(size);
  std::memcpy(buffer, copied.data(), copied.size());
  // The length it begins with is all that VerQueryValueW knows of the buffer.
  const auto length = static_cast<std::uint16_t>(std::min<std::size_t>(*copied.U16(0), copied.size()));
  std::memcpy(buffer, &length, sizeof length);
  return TRUE;
}

BOOL VerQueryValueW(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size) {
  if (size != nullptr) *size = 0;
  if (resource == nullptr || name == nullptr || value == nullptr) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  std::uint16_t length = 0;
  std::memcpy(&length, resource, sizeof length);
  const auto found = FindVersionValue({resource, length}, name);
  if (!found) return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND, FALSE);
  static const std::uint32_t no_value = 0;  // an empty text, too
  const void* bytes = found->bytes.size() == 0 ? static_cast<const void*>(&no_value) : found->bytes.data();
  *value = const_cast<void*>(bytes);
  if (size != nullptr) *size = static_cast<UINT>(found->text ? found->bytes.size() / 2 : found->bytes.size());
  return TRUE;
}

}  // namespace host
