#include "posix/kernel/named_object.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/calls/errors.h"

namespace host {
namespace {

constexpr DWORD kNameTooLong = 206;

std::shared_ptr<ObjectNamespace> CurrentSpace() {
  try {
    return ObjectNamespace::Current();
  } catch (const std::system_error&) {
    return nullptr;
  }
}

ObjectSlot* MakeSlot(ObjectNamespace& space, std::u16string_view name, ObjectKind kind, const NamedObject::Fill& fill) {
  ObjectSlot* slot = space.FreeSlot();
  if (slot == nullptr) return nullptr;
  std::copy(name.begin(), name.end(), slot->name);
  slot->name_length = static_cast<std::uint32_t>(name.size());
  slot->kind = kind;
  fill(*slot, space);
  return slot;
}

}  // namespace

std::unique_ptr<NamedObject> NamedObject::Open(LPCWSTR text, ObjectKind kind, const Fill& fill) {
  const std::u16string_view name(text);
  if (name.size() > kLongestName) return Fail(kNameTooLong, nullptr);
  const auto space = CurrentSpace();
  if (space == nullptr) return Fail(ERROR_GEN_FAILURE, nullptr);
  KernelLock lock;
  NamespaceLock space_lock(lock, *space);
  ObjectSlot* slot = space->Find(name);
  SetLastError(slot != nullptr ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
  if (slot != nullptr && slot->kind != kind) return Fail(ERROR_INVALID_HANDLE, nullptr);
  if (slot == nullptr) slot = MakeSlot(*space, name, kind, fill);
  if (slot == nullptr) return Fail(ERROR_NOT_ENOUGH_MEMORY, nullptr);
  return std::make_unique<NamedObject>(space, *slot);
}

NamedObject::NamedObject(std::shared_ptr<ObjectNamespace> space, ObjectSlot& slot)
    : space_(std::move(space)), slot_(slot) {
  space_->Open(slot_);
}

void NamedObject::CloseHandle() {
  KernelLock lock;
  NamespaceLock space_lock(lock, *space_);
  space_->Close(slot_);
  open_ = false;
}

NamedObject::~NamedObject() {
  KernelLock lock;
  NamespaceLock space_lock(lock, *space_);
  if (open_) space_->Close(slot_);
  space_->Release(slot_);
}

}  // namespace host
