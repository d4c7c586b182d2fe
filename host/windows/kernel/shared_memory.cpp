// Blocks are the system's mappings, all of one size; behind the largest block there can be stands how large each is.
#include "common/kernel/shared_memory.h"

#include <cstdint>
#include <memory>

#include "common/calls/errors.h"
#include "common/calls/last_error.h"
#include "common/kernel/named_objects.h"
#include "common/text/utf.h"
#include "windows/kernel/object_names.h"
#include "windows/kernel/real_handles.h"

namespace host {
namespace {

constexpr DWORD kLargestBlock = 4096;

struct Block {
  std::uint8_t bytes[kLargestBlock];
  DWORD size;
};

struct Unmap {
  void operator()(Block* view) const { ::UnmapViewOfFile(view); }
};
using BlockView = std::unique_ptr<Block, Unmap>;

BlockView View(HANDLE mapping) {
  return BlockView(static_cast<Block*>(::MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, 0)));
}

DWORD CheckBlock(HANDLE file, DWORD protect, DWORD size_high, DWORD size_low) {
  if (file != INVALID_HANDLE_VALUE) return ERROR_NOT_SUPPORTED;
  if (protect != PAGE_READWRITE || (size_high == 0 && size_low == 0)) return ERROR_INVALID_PARAMETER;
  if (size_high != 0 || size_low > kLargestBlock) return ERROR_NOT_ENOUGH_MEMORY;
  return ERROR_SUCCESS;
}

void WriteSize(HANDLE mapping, DWORD size) {
  const KeepLastError keep;
  if (const BlockView view = View(mapping)) view->size = size;
}

}  // namespace

HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES, DWORD protect, DWORD size_high, DWORD size_low,
                          LPCWSTR name) {
  if (const DWORD error = CheckBlock(file, protect, size_high, size_low)) return Fail(error, HANDLE{});
  const WideString system_name = SystemName(name);
  SetLastError(ERROR_SUCCESS);
  const HANDLE mapping =
      ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Block), NameOrNull(system_name));
  if (mapping != nullptr && GetLastError() != ERROR_ALREADY_EXISTS) WriteSize(mapping, size_low);
  return system_name.empty() ? NoteHandle(mapping) : NoteNamedHandle(mapping);
}

LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low, SIZE_T bytes) {
  if (offset_high != 0 || offset_low != 0) return Fail(ERROR_INVALID_PARAMETER, nullptr);
  if (bytes > kLargestBlock) return Fail(ERROR_ACCESS_DENIED, nullptr);
  return ::MapViewOfFile(mapping, access, 0, 0, 0);
}

BOOL UnmapViewOfFile(LPCVOID view) { return ::UnmapViewOfFile(view); }

std::optional<std::vector<std::uint8_t>> SharedBlock(std::string_view name) {
  const WideString system_name = SystemName(Utf8ToWide(name).c_str());
  const HANDLE mapping = ::OpenFileMappingW(FILE_MAP_ALL_ACCESS, FALSE, system_name.c_str());
  if (mapping == nullptr) return std::nullopt;
  const BlockView view = View(mapping);
  ::CloseHandle(mapping);
  if (view == nullptr || view->size > kLargestBlock) return std::nullopt;
  return std::vector<std::uint8_t>(view->bytes, view->bytes + view->size);
}

}  // namespace host
