#include "link/bluetooth_radio.h"

#include <stdexcept>

#include "platform/instrument_libraries.h"

namespace qxcm {

bool SwitchRadioOn() {
  constexpr DWORD kDiscoverable = 2;  // no other mode counts as on
  DWORD mode = 0;
  if (BthUtilGetRadioMode(&mode) == 0 && mode == kDiscoverable) return false;
  if (BthUtilSetRadioMode(kDiscoverable) != 0) throw std::runtime_error("Bluetooth can not be activated.");
  return true;
}

}  // namespace qxcm
