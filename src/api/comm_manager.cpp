// Life of an open service, and its send operations.
#include "api/comm_manager.h"

#include <stdexcept>
#include <utility>

#include "QXCommMgr.h"
#include "link/comm_io_exception.h"
#include "protocol/frame.h"

namespace qxcm {

namespace {

constexpr WCHAR kBluetoothPort[] = TEXT("COMBT:");
constexpr WCHAR kCablePort[] = TEXT("COM5:");
constexpr double kSmallestStep = 0.1;  // seconds of arc
constexpr double kLargestStep = 60.0;

WideText NormalisedPortName(LPCWSTR name) {
  if (name == nullptr) throw std::logic_error("null pointer.");
  WideText normalised = UpperCase(name);
  if (normalised.empty() || normalised.back() != TEXT(':')) normalised.push_back(TEXT(':'));
  return normalised;
}

}  // namespace

CommManager::CommManager(LPCWSTR port_name, std::unique_ptr<Link> link)
    : port_name_(NormalisedPortName(port_name)), link_(std::move(link)) {
  Guard guard(lock_);
  if (!OpenLink()) throw comm_io_exception("cannot open port.");
  if (!processor_.Start()) {
    CloseLink();
    throw std::runtime_error("Thread create failed.");
  }
}

CommManager::~CommManager() {
  MarkClosing();
  Shutdown();
}

bool CommManager::Shutdown() {
  assembler_.Stop();
  processor_.RequestStop();
  const bool dispatcher_waits_for_us = notify_list_.IsSendingToThisThread();
  if (!dispatcher_waits_for_us) processor_.Join();
  Guard guard(lock_);
  CloseLink();
  return !dispatcher_waits_for_us;
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

std::int32_t CommManager::SetAngleRoundStep(double step) {
  if (!(step >= kSmallestStep && step <= kLargestStep)) return QCM_BAD_ARGUMENT;  // not a number is refused too
  Guard guard(lock_);
  angle_round_step_ = step;
  return QCM_OK;
}

void CommManager::HandleEvent(DWORD) {}

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
