#include "common/kernel/shared_memory.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "posix/kernel/named_object.h"

namespace host {
namespace {

constexpr DWORD kInvalidAddress = 487;

// What the handle and the views keep together.
class Block {
 public:
  Block() : own_(std::make_unique<ObjectSlot>()) {}
  explicit Block(std::unique_ptr<NamedObject> named) : named_(std::move(named)) {}

  void* memory() { return named_ != nullptr ? named_->slot().block : own_->block; }
  void CloseHandle() {
    if (named_ != nullptr) named_->CloseHandle();
  }

 private:
  const std::unique_ptr<NamedObject> named_;
  const std::unique_ptr<ObjectSlot> own_;  // of an unnamed block
};

class Mapping final : public KernelObject {
 public:
  explicit Mapping(std::shared_ptr<Block> block) : block_(std::move(block)) {}
  ~Mapping() override { block_->CloseHandle(); }
  const std::shared_ptr<Block>& block() const { return block_; }

 private:
  const std::shared_ptr<Block> block_;
};

struct Views {
  std::mutex mutex;
  std::multimap<const void*, std::shared_ptr<Block>> at;  // guarded by mutex
};

Views& TheViews() {
  static auto* views = new Views;  // threads may outlive the end of main
  return *views;
}

DWORD CheckBlock(HANDLE file, DWORD protect, DWORD size_high, DWORD size_low) {
  if (file != INVALID_HANDLE_VALUE) return ERROR_NOT_SUPPORTED;
  if (protect != PAGE_READWRITE || (size_high == 0 && size_low == 0)) return ERROR_INVALID_PARAMETER;
  if (size_high != 0 || size_low > kLargestBlock) return ERROR_NOT_ENOUGH_MEMORY;
  return ERROR_SUCCESS;
}

}  // namespace

HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES, DWORD protect, DWORD size_high, DWORD size_low,
                          LPCWSTR name) {
  SetLastError(CheckBlock(file, protect, size_high, size_low));
  if (GetLastError() != ERROR_SUCCESS) return nullptr;
  if (name == nullptr || *name == 0) return InsertHandle(std::make_shared<Mapping>(std::make_shared<Block>()));
  auto named =
      NamedObject::Open(name, ObjectKind::kBlock, [&](ObjectSlot& slot, const auto&) { slot.block_size = size_low; });
  if (named == nullptr) return nullptr;
  return InsertHandle(std::make_shared<Mapping>(std::make_shared<Block>(std::move(named))));
}

LPVOID MapViewOfFile(HANDLE handle, DWORD, DWORD offset_high, DWORD offset_low, SIZE_T bytes) {
  const auto mapping = FindHandle<Mapping>(handle);
  if (mapping == nullptr) return nullptr;
  if (offset_high != 0 || offset_low != 0) return Fail(ERROR_INVALID_PARAMETER, nullptr);
  if (bytes > kLargestBlock) return Fail(ERROR_ACCESS_DENIED, nullptr);
  Views& views = TheViews();
  const std::lock_guard<std::mutex> lock(views.mutex);
  void* const memory = mapping->block()->memory();
  views.at.emplace(memory, mapping->block());
  return memory;
}

BOOL UnmapViewOfFile(LPCVOID address) {
  std::shared_ptr<Block> block;  // ends after the lock has been released
  Views& views = TheViews();
  const std::lock_guard<std::mutex> lock(views.mutex);
  const auto view = views.at.find(address);
  if (view == views.at.end()) return Fail(kInvalidAddress, FALSE);
  block = std::move(view->second);
  views.at.erase(view);
  return TRUE;
}

}  // namespace host
