// Access to the focus block.
#include "commands/measure/focus_block.h"

#include <cstring>
#include <stdexcept>

#include "platform/lock.h"

namespace qxcm {

namespace {
constexpr WCHAR kBlockName[] = TEXT("KORAX-HALVERN.RZM.CMemFocusDat");
constexpr WCHAR kMutexName[] = TEXT("KORAX-HALVERN.RZM.CMemFocusMtx");
constexpr int kReleaseTries = 20;
constexpr DWORD kRetryPause = 5;  // milliseconds

template <class Word>
void WriteWord(std::byte* block, std::size_t offset, Word value) {
  std::memcpy(block + offset, &value, sizeof value);
}

/// Handles are 32 bits in the block.
std::uint32_t HandleWord(HANDLE handle) { return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(handle)); }
}  // namespace

FocusBlock::FocusBlock() : block_(kBlockName, kMutexName, sizeof(FocusData)) {}

FocusData FocusBlock::Copy() {
  FocusData data;
  Guard guard(block_.mutex());
  std::memcpy(&data, block_.bytes(), sizeof data);
  return data;
}

bool FocusBlock::Claim(HANDLE event) {
  Guard guard(block_.mutex());
  FocusData data;
  std::memcpy(&data, block_.bytes(), sizeof data);
  if (data.event != 0) return false;
  WriteWord(block_.bytes(), offsetof(FocusData, caller), std::uint32_t{GetCurrentProcessId()});
  WriteWord(block_.bytes(), offsetof(FocusData, event), HandleWord(event));
  return true;
}

void FocusBlock::Release() noexcept {
  // A block that stayed owned would refuse every later job of every process: a refused wait is tried again.
  for (int tries = 0; tries < kReleaseTries; ++tries) {
    try {
      Guard guard(block_.mutex());
      WriteWord(block_.bytes(), offsetof(FocusData, event), std::uint32_t{0});
      return;
    } catch (const std::runtime_error&) {
      Sleep(kRetryPause);
    }
  }
}

}  // namespace qxcm
