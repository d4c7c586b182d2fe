#include "instrument/radio.h"

#include <initializer_list>

#include "common/calls/entry.h"

namespace host::instrument {

Radio& Radio::Instance() {
  static auto* radio = new Radio;  // its port may still be opened while the process ends
  return *radio;
}

std::uint32_t Radio::mode() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return mode_;
}

void Radio::SetMode(std::uint32_t mode) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Become(mode);
}

DWORD Radio::Switch(std::uint32_t mode) {
  if (mode > kDiscoverable) return ERROR_INVALID_PARAMETER;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!can_switch_) return ERROR_GEN_FAILURE;
  Become(mode);
  return ERROR_SUCCESS;
}

// To be called with the lock held. A radio that is discoverable already keeps its port.
void Radio::Become(std::uint32_t mode) {
  if (mode != mode_) discoverable_since_ = Clock::now();
  mode_ = mode;
}

bool Radio::can_switch() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return can_switch_;
}

void Radio::SetCanSwitch(bool can_switch) {
  const std::lock_guard<std::mutex> lock(mutex_);
  can_switch_ = can_switch;
}

std::uint32_t Radio::port_up_after_ms() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return port_up_after_ms_;
}

void Radio::SetPortUpAfterMs(std::uint32_t time) {
  const std::lock_guard<std::mutex> lock(mutex_);
  port_up_after_ms_ = time;
}

bool Radio::PortIsUp() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto up = discoverable_since_ + std::chrono::milliseconds(port_up_after_ms_);
  return mode_ == kDiscoverable && Clock::now() >= up;
}

}  // namespace host::instrument

namespace {

/// One call of the Bluetooth library by its ordinal.
template <class Work>
int RadioCall(int ordinal, std::initializer_list<host::CallValue> arguments, Work work) {
  return host::Entry(
      "BTHUTIL", ordinal, true, [&] { return host::CallValues(arguments); }, [&] { return static_cast<int>(work()); },
      host::FailsWith::kErrorCode);
}

}  // namespace

using host::instrument::Radio;

int WINAPI BthUtilSetRadioMode(DWORD mode) {
  return RadioCall(1, {std::int64_t{mode}}, [=] { return Radio::Instance().Switch(mode); });
}

int WINAPI BthUtilGetRadioMode(DWORD* mode) {
  return RadioCall(2, {}, [=]() -> DWORD {
    if (mode == nullptr) return ERROR_INVALID_PARAMETER;
    *mode = Radio::Instance().mode();
    return ERROR_SUCCESS;
  });
}
