// Named mutexes and named shared memory.
#include "platform/shared_block.h"

#include <stdexcept>

namespace qxcm {

NamedMutex::NamedMutex(LPCWSTR name) : mutex_(CreateMutexW(nullptr, FALSE, name)) {
  if (!mutex_) throw std::runtime_error("Mutex create failed.");
}

void NamedMutex::Enter() {
  const DWORD result = WaitForSingleObject(mutex_.get(), INFINITE);
  if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED_0) throw std::runtime_error("Mutex wait failed.");
}

void NamedMutex::Leave() { ReleaseMutex(mutex_.get()); }

SharedBlock::SharedBlock(LPCWSTR name, LPCWSTR mutex_name, std::size_t size) : mutex_(mutex_name) {
  SetLastError(0);
  mapping_ =
      Handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(size), name));
  created_ = mapping_ && GetLastError() != ERROR_ALREADY_EXISTS;
  if (mapping_) view_ = static_cast<std::byte*>(MapViewOfFile(mapping_.get(), FILE_MAP_WRITE, 0, 0, size));
  if (view_ == nullptr) throw std::runtime_error("FileMapping create failed.");
}

SharedBlock::~SharedBlock() { UnmapViewOfFile(view_); }

}  // namespace qxcm
