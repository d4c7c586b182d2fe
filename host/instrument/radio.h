// The instrument's Bluetooth radio, and the two calls of the platform's Bluetooth library that read and set its mode.
#ifndef QXHOST_INSTRUMENT_RADIO_H
#define QXHOST_INSTRUMENT_RADIO_H

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <mutex>

extern "C" {

/// Ordinal 1. mode: 0 off, 1 connectable, 2 discoverable. Returns 0; 87 for another mode, 31 when it cannot be
/// switched.
int WINAPI BthUtilSetRadioMode(DWORD mode);
/// Ordinal 2. Returns 0; 87 for null.
int WINAPI BthUtilGetRadioMode(DWORD* mode);

}  // extern "C"

namespace host::instrument {

/// Any thread.
class Radio {
 public:
  static constexpr std::uint32_t kDiscoverable = 2;

  /// The instrument's one. It is on from the start.
  static Radio& Instance();

  std::uint32_t mode() const;
  /// From outside: whether it can be switched does not matter.
  void SetMode(std::uint32_t mode);
  /// For the library; 0, 31 or 87.
  DWORD Switch(std::uint32_t mode);

  bool can_switch() const;
  void SetCanSwitch(bool can_switch);
  std::uint32_t port_up_after_ms() const;
  void SetPortUpAfterMs(std::uint32_t time);

  /// Whether the Bluetooth port is there: the radio is discoverable, and has been for the time its port takes.
  bool PortIsUp() const;

 private:
  using Clock = std::chrono::steady_clock;

  void Become(std::uint32_t mode);

  mutable std::mutex mutex_;  // guards all below
  std::uint32_t mode_ = kDiscoverable;
  Clock::time_point discoverable_since_ = Clock::now();
  bool can_switch_ = true;
  std::uint32_t port_up_after_ms_ = 0;
};

}  // namespace host::instrument

#endif
