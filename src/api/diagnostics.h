// Looks inside the library for a host that links it in; not exported.
#ifndef QXCM_API_DIAGNOSTICS_H
#define QXCM_API_DIAGNOSTICS_H

#include <cstddef>

namespace qxcm {

/// Commands received and not yet taken up, over all open services. Any thread.
std::size_t QueuedCommands();

}  // namespace qxcm

#endif
