// Life of an open service, and its send operations.
#include "api/comm_manager.h"

#include <stdexcept>
#include <utility>

#include "QXCommMgr.h"
#include "link/bluetooth_radio.h"
#include "link/comm_io_exception.h"
#include "protocol/frame.h"

namespace qxcm {

namespace {

constexpr WCHAR kBluetoothPort[] = TEXT("COMBT:");
constexpr WCHAR kCablePort[] = TEXT("COM5:");
constexpr DWORD kLookAgain = 10;         // milliseconds between looks at a dispatcher that shall end
constexpr DWORD kRadioPatience = 10000;  // milliseconds
constexpr DWORD kRadioPause = 300;
constexpr DWORD kLongestNotice = 5000;  // milliseconds that a window may take while its service is closed

WideText NormalisedPortName(LPCWSTR name) {
  if (name == nullptr) throw std::logic_error("null pointer.");
  WideText normalised = UpperCase(name);
  if (normalised.empty() || normalised.back() != TEXT(':')) normalised.push_back(TEXT(':'));
  return normalised;
}

}  // namespace

CommManager::CommManager(LPCWSTR port_name, std::unique_ptr<Link> link)
    : port_name_(NormalisedPortName(port_name)), link_(std::move(link)) {
  measured_data_.ReadAll();
  Guard guard(lock_);
  OpenLinkFirst();
  if (!processor_.Start()) {
    CloseLink();
    throw std::runtime_error("Thread create failed.");
  }
}

CommManager::~CommManager() {
  MarkClosing();
  Shutdown();
  while (!processor_.JoinFor(INFINITE)) {
  }
  focus_worker_.Stop();
}

void CommManager::Shutdown() {
  assembler_.Stop();
  processor_.RequestStop();
  // The command in hand is finished before the port is closed, unless a window holds it up.
  while (!processor_.JoinFor(0) && !notify_list_.IsSending()) processor_.JoinFor(kLookAgain);
  Guard guard(lock_);
  link_->LetSentMessagesThroughWhenClosing();
  CloseLink();
}

bool CommManager::AwaitEnd() {
  for (DWORD sending = 0; !processor_.JoinFor(0); processor_.JoinFor(kLookAgain)) {
    if (notify_list_.IsSendingToThisThread()) return false;
    sending = notify_list_.IsSending() ? sending + kLookAgain : 0;
    if (sending > kLongestNotice) return false;
  }
  focus_worker_.Stop();
  open_files_.CloseAll();
  return true;
}

// A radio that has been switched on just now takes some time to bring its port up.
void CommManager::OpenLinkFirst() {
  const bool comes_up = port_name_ == kBluetoothPort && SwitchRadioOn();
  const DWORD start = GetTickCount();
  while (!OpenLink()) {
    if (!comes_up || GetTickCount() - start >= kRadioPatience) throw comm_io_exception("cannot open port.");
    Sleep(kRadioPause);
  }
}

bool CommManager::OpenLink() {
  // Only the exact Bluetooth name leads there; every other name is the cable.
  const LPCWSTR port = port_name_ == kBluetoothPort ? kBluetoothPort : kCablePort;
  assembler_.Restart();
  link_->SetOwner(&assembler_);
  return link_->Open(port);
}

void CommManager::CloseLink() {
  assembler_.Stop();
  link_->Close();
  assembler_.Discard();
}

std::int32_t CommManager::Suspend() {
  Guard guard(lock_);
  if (closing()) return QCM_NO_SERVICE;
  suspended_ = true;
  CloseLink();
  return QCM_OK;
}

std::int32_t CommManager::Resume() {
  Guard guard(lock_);
  if (closing()) return QCM_NO_SERVICE;
  if (!OpenLink()) return QCM_PORT_FAILED;
  suspended_ = false;
  return QCM_OK;
}

void CommManager::HandleEvent(DWORD mask) {
  if (closing()) return;
  measured_data_.HandleEvent(mask);
  battery_.HandleEvent(mask);
}

void CommManager::HandleKey(std::uint32_t code) {
  if (!closing()) ReportKey(*this, code);
}

void CommManager::SendControlByte(char code) {
  Guard guard(lock_);
  if (!suspended_) link_->Write({&code, 1});
}

void CommManager::SendFrame(bool asynchronous, std::string_view text) {
  Guard guard(lock_);
  if (suspended_) return;
  ComposeFrame(asynchronous, text, frame_);
  link_->Write(frame_);
}

}  // namespace qxcm
