// The key of the system's registry that is the instrument's whole registry, for this process alone:
// HKEY_CURRENT_USER\Software\QXHost\<process>, with a key for each of the instrument's roots. The system's own keys are
// never touched.
//
// It is volatile, that is, never on a disk, and goes with the process. What a killed process has left behind the next
// one removes.
#ifndef QXHOST_WINDOWS_REGISTRY_PRIVATE_KEY_H
#define QXHOST_WINDOWS_REGISTRY_PRIVATE_KEY_H

#include <windows.h>

#include <cstddef>

#include "common/text/utf.h"

namespace host {

/// The system's key for the instrument's root of this place in kRegistryRoots; made, and filled with the defaults, at
/// first use. Any thread. Throws std::system_error when the system gives no key.
HKEY SystemRoot(std::size_t place);

/// Where the private key is below HKEY_CURRENT_USER.
const WideString& PrivateKeyPath();

/// Deletes the keys that processes have left behind which are no more.
void RemoveLeftPrivateKeys();

}  // namespace host

#endif
