// The controller's Bluetooth radio.
#ifndef QXCM_LINK_BLUETOOTH_RADIO_H
#define QXCM_LINK_BLUETOOTH_RADIO_H

namespace qxcm {

/// Switches the radio on and makes it discoverable, unless it is so already. It is never switched off again.
/// Returns whether it was switched on just now: then the Bluetooth port takes some seconds to come up. Throws
/// std::runtime_error "Bluetooth can not be activated." when it cannot be switched on. Any thread.
bool SwitchRadioOn();

}  // namespace qxcm

#endif
