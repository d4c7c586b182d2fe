// Opening, closing and looking up services.
#include "api/open_services.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <utility>

#include "api/event_window.h"
#include "link/serial_channel.h"

namespace qxcm {

namespace {

constexpr WCHAR kWindowListBlock[] = TEXT("KORAX-HALVERN.RZM.CMemWndLst");
constexpr WCHAR kWindowListMutex[] = TEXT("KORAX-HALVERN.RZM.CMemWndLstMtx");
constexpr std::size_t kWindowListSize = 128;
constexpr int kSequenceBits = 12;
constexpr std::uint32_t kLastSequence = (1u << kSequenceBits) - 1;

void HandleEvent(DWORD mask, LPARAM) {
  for (const auto& manager : OpenServices::Instance().All()) manager->HandleEvent(mask);
}

void HandleKey(std::uint32_t code) {
  for (const auto& manager : OpenServices::Instance().All()) manager->HandleKey(code);
}

}  // namespace

OpenServices& OpenServices::Instance() {
  static auto* const instance = new OpenServices;
  return *instance;
}

OpenServices::OpenServices() : key_channel_(&HandleKey) {}

QCM_HANDLE OpenServices::Open(LPCWSTR port_name) {
  Guard lifecycle(lifecycle_lock_);
  ForgetEnded();
  try {
    if (!event_window::Install(&HandleEvent)) throw std::runtime_error("no event window.");
    if (Count() >= kMost) throw std::runtime_error("too many services.");
    CreateWindowListBlock();
    const QCM_HANDLE handle = Insert(std::make_shared<CommManager>(port_name, std::make_unique<SerialChannel>()));
    key_channel_.Start();
    return handle;
  } catch (...) {
    StopSharedPartsWhenLastIsGone();
    throw;
  }
}

std::int32_t OpenServices::Close(QCM_HANDLE handle) {
  if (Find(handle) == nullptr) return QCM_NO_SERVICE;  // without waiting for an open in progress
  const std::shared_ptr<CommManager> manager = ShutDown(handle);
  if (manager == nullptr) return QCM_NO_SERVICE;
  // With no lock held: a window that the dispatcher waits for may open and close services itself.
  manager->AwaitEnd();
  Guard lifecycle(lifecycle_lock_);
  ForgetEnded();
  return QCM_OK;
}

std::shared_ptr<CommManager> OpenServices::ShutDown(QCM_HANDLE handle) {
  Guard lifecycle(lifecycle_lock_);
  std::shared_ptr<CommManager> manager = Remove(handle);
  if (manager == nullptr) return nullptr;
  ending_.push_back(manager);
  manager->Shutdown();
  StopSharedPartsWhenLastIsGone();
  return manager;
}

std::shared_ptr<CommManager> OpenServices::Find(QCM_HANDLE handle) {
  Guard guard(global_lock_);
  const auto found = services_.find(handle);
  return found == services_.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<CommManager>> OpenServices::All() {
  std::vector<std::shared_ptr<CommManager>> all;
  all.reserve(kMost);
  Guard guard(global_lock_);
  for (const auto& [handle, manager] : services_) all.push_back(manager);
  return all;
}

std::size_t OpenServices::Count() {
  Guard guard(global_lock_);
  return services_.size();
}

void OpenServices::CreateWindowListBlock() {
  if (window_list_block_) return;
  window_list_block_.emplace(kWindowListBlock, kWindowListMutex, kWindowListSize);
  if (!window_list_block_->created()) return;
  Guard guard(window_list_block_->mutex());
  std::memset(window_list_block_->bytes(), 0, kWindowListSize);
}

QCM_HANDLE OpenServices::Insert(std::shared_ptr<CommManager> manager) {
  Guard guard(global_lock_);
  for (;;) {
    sequence_ = sequence_ == kLastSequence ? 1 : sequence_ + 1;
    const QCM_HANDLE handle = (GetCurrentProcessId() << kSequenceBits) | sequence_;
    if (services_.emplace(handle, manager).second) return handle;
  }
}

std::shared_ptr<CommManager> OpenServices::Remove(QCM_HANDLE handle) {
  Guard guard(global_lock_);
  const auto found = services_.find(handle);
  if (found == services_.end()) return nullptr;
  std::shared_ptr<CommManager> manager = std::move(found->second);
  services_.erase(found);
  manager->MarkClosing();
  return manager;
}

void OpenServices::ForgetEnded() {
  const auto ended = [](const auto& manager) { return manager->HasEnded(); };
  ending_.erase(std::remove_if(ending_.begin(), ending_.end(), ended), ending_.end());
}

void OpenServices::StopSharedPartsWhenLastIsGone() {
  if (Count() != 0) return;
  event_window::Remove();
  key_channel_.Stop();
  window_list_block_.reset();
}

}  // namespace qxcm
