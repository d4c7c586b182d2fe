#include "common/version/version.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "common/calls/errors.h"
#include "common/files/files.h"
#include "windows/disk/entries.h"
#include "windows/files/disk_file.h"
#include "windows/version/version_blocks.h"

namespace host {
namespace {

constexpr std::uint64_t kLargestFile = std::uint64_t{64} << 20;
constexpr DWORD kBlockHeader = 6;

using File = std::shared_ptr<const DiskFile>;

/// The file, open for as long as the system reads it; null with the last error set.
File OpenModule(LPCWSTR path) {
  if (path == nullptr) return Fail(ERROR_INVALID_PARAMETER, File());
  if (*path != 0 && WideView(path).back() == TEXT(':')) return Fail(ERROR_FILE_NOT_FOUND, File());  // a device
  const OpenRequest reading = {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING, 0};
  const auto file = std::dynamic_pointer_cast<DiskFile>(OpenFileByPath(path, reading));
  if (file == nullptr) return File();
  return file->Size() <= kLargestFile ? file : Fail(ERROR_NOT_ENOUGH_MEMORY, File());
}

/// Why the system finds no version resource in the file. It knows only itself whether the resource or more is missing.
DWORD WhyMissing(const File& file) {
  constexpr DWORD kAsData = LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;
  const HMODULE module = ::LoadLibraryExW(file->path().c_str(), nullptr, kAsData);
  if (module == nullptr) return ERROR_RESOURCE_DATA_NOT_FOUND;
  const bool found = ::FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION) != nullptr;
  const DWORD error = found ? ERROR_BAD_FORMAT : ::GetLastError();
  ::FreeLibrary(module);
  return error;
}

DWORD SystemSize(const File& file) {
  DWORD unused = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(file->path().c_str(), &unused);
  return size != 0 ? size : Fail(WhyMissing(file), DWORD{0});
}

}  // namespace

DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD unused) {
  if (unused != nullptr) *unused = 0;
  const File module = OpenModule(file);
  return module == nullptr ? 0 : SystemSize(module);
}

BOOL GetFileVersionInfoW(LPCWSTR file, DWORD, DWORD size, LPVOID resource) {
  if (resource == nullptr) return Fail(ERROR_INVALID_DATA, FALSE);
  if (size < kBlockHeader) return Fail(ERROR_INSUFFICIENT_BUFFER, FALSE);
  const File module = OpenModule(file);
  const DWORD whole = module == nullptr ? 0 : SystemSize(module);
  if (whole == 0) return FALSE;
  std::vector<BYTE> bytes(whole);
  if (!::GetFileVersionInfoW(module->path().c_str(), 0, whole, bytes.data())) return Fail(ERROR_BAD_FORMAT, FALSE);
  const DWORD copied = std::min(size, whole);
  const bool good = CutVersionBlocks(bytes.data(), copied);
  std::memcpy(resource, bytes.data(), copied);
  if (good) return TRUE;
  return Fail(copied < whole ? ERROR_INSUFFICIENT_BUFFER : ERROR_BAD_FORMAT, FALSE);  // not even its header
}

BOOL VerQueryValueW(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size) {
  UINT length = 0;
  if (size != nullptr) *size = 0;
  if (resource == nullptr || name == nullptr || value == nullptr) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (!::VerQueryValueW(resource, name, value, &length)) return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND, FALSE);
  static const DWORD no_value = 0;  // an empty text, too
  if (length == 0) *value = const_cast<DWORD*>(&no_value);
  if (size != nullptr) *size = length;
  return TRUE;
}

}  // namespace host
