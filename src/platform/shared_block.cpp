// Named mutexes and named shared memory.
#include "platform/shared_block.h"

#include <stdexcept>

namespace qxcm {

namespace {
constexpr DWORD kLookAgain = 500;  // milliseconds
constexpr DWORD kRetryPause = 5;   // milliseconds after a refusal
constexpr int kReleaseAttempts = 20;
}  // namespace

NamedMutex::NamedMutex(LPCWSTR name) : mutex_(CreateMutexW(nullptr, FALSE, name)) {
  if (!mutex_) throw std::runtime_error("Mutex create failed.");
}

void NamedMutex::Enter() {
  const DWORD result = WaitForSingleObject(mutex_.get(), INFINITE);
  if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED_0) throw std::runtime_error("Mutex wait failed.");
}

bool NamedMutex::EnterUnless(const Event& give_up) {
  const HANDLE handles[] = {mutex_.get(), give_up.handle()};
  while (!give_up.WasSet()) {
    const DWORD result = WaitForMultipleObjects(2, handles, FALSE, kLookAgain);
    if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED_0) return true;
    if (result == WAIT_FAILED) throw std::runtime_error("Mutex wait failed.");
  }
  return false;
}

void NamedMutex::Leave() {
  // A mutex kept would shut out every other process: a refusal is not taken at once.
  for (int attempt = 0; ReleaseMutex(mutex_.get()) == FALSE && attempt < kReleaseAttempts; ++attempt)
    Sleep(kRetryPause);
}

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
