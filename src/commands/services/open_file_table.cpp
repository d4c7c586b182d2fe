#include "commands/services/open_file_table.h"

#include <utility>

#include "commands/services/file_status.h"

namespace qxcm {

HandleNumberPool::HandleNumberPool() {
  for (std::uint8_t number = kFirst; number <= kLast; ++number) numbers_.push_back(number);
}

std::uint8_t OpenFileTable::Add(Handle file) {
  const std::uint8_t number = numbers_.Front();
  files_.emplace(number, std::move(file));
  numbers_.DropFront();
  return number;
}

HANDLE OpenFileTable::Find(std::int32_t number) const {
  if (number < HandleNumberPool::kFirst || number > HandleNumberPool::kLast) return nullptr;
  const auto found = files_.find(static_cast<std::uint8_t>(number));
  return found == files_.end() ? nullptr : found->second.get();
}

DWORD OpenFileTable::Close(std::int32_t number) {
  if (Find(number) == nullptr) return ERROR_INVALID_HANDLE;
  const auto file = files_.find(static_cast<std::uint8_t>(number));
  const DWORD code = ErrorOf([&] { file->second.Close(); });
  numbers_.PutBack(file->first);
  files_.erase(file);
  return code;
}

void OpenFileTable::CloseAll() {
  Guard guard(lock_);
  for (const auto& [number, file] : files_) numbers_.PutBack(number);
  files_.clear();
}

}  // namespace qxcm
