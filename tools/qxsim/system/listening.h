// How this machine shares addresses that programs listen at.
#ifndef QXSIM_SYSTEM_LISTENING_H
#define QXSIM_SYSTEM_LISTENING_H

namespace qxsim {

/// Whether to listen with SO_REUSEADDR. On Posix it gives back an address that was used a moment ago; on Windows it
/// would share the address with another program that listens there.
bool ReusesAddresses();

}  // namespace qxsim

#endif
