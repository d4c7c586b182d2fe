#include "instrument/keys.h"

#include <stdexcept>

#include "common/kernel/handles.h"
#include "common/kernel/shared_memory.h"
#include "common/sync/sync.h"
#include "common/sync/threads.h"

namespace host::instrument {
namespace {

constexpr WCHAR kKeyEventName[] = TEXT("KORAX-HALVERN.RZM.CommKeyDownEv");
constexpr WCHAR kKeyBlockName[] = TEXT("KORAX-HALVERN.RZM.CommKeyData");
constexpr WCHAR kKeyMutexName[] = TEXT("KORAX-HALVERN.RZM.CommKeyDataMtx");

}  // namespace

KeyProcess::KeyProcess() {
  event_ = host::CreateEventW(nullptr, TRUE, FALSE, kKeyEventName);
  mutex_ = host::CreateMutexW(nullptr, FALSE, kKeyMutexName);
  block_ = host::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof *code_, kKeyBlockName);
  if (block_ != nullptr) {
    code_ = static_cast<std::uint32_t*>(host::MapViewOfFile(block_, FILE_MAP_ALL_ACCESS, 0, 0, sizeof *code_));
  }
  if (event_ != nullptr && mutex_ != nullptr && code_ != nullptr) return;
  Close();
  throw std::runtime_error("the key process cannot open its named objects");
}

KeyProcess::~KeyProcess() { Close(); }

void KeyProcess::Close() {
  if (code_ != nullptr) host::UnmapViewOfFile(code_);
  for (const HANDLE handle : {block_, mutex_, event_}) {
    if (handle != nullptr) host::CloseHandle(handle);
  }
}

bool KeyProcess::Announce(const std::vector<std::uint32_t>& codes, std::chrono::milliseconds time) {
  for (const std::uint32_t code : codes) {
    if (!Write(code, time)) return false;
  }
  return host::EventModify(event_, kEventSet) != FALSE;
}

bool KeyProcess::Write(std::uint32_t code, std::chrono::milliseconds time) {
  const DWORD result = host::WaitForSingleObject(mutex_, static_cast<DWORD>(time.count()));
  if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) return false;
  *code_ = code;
  host::ReleaseMutex(mutex_);
  return true;
}

bool KeyProcess::WaitUntilTaken(std::chrono::milliseconds time) const {
  const auto deadline = std::chrono::steady_clock::now() + time;
  // There is no wait for an event's reset; a look every millisecond is soon enough for a key.
  while (host::WaitForSingleObject(event_, 0) == WAIT_OBJECT_0) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    host::Sleep(1);
  }
  return true;
}

}  // namespace host::instrument
