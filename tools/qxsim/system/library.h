// What the simulator sees of the library beside its exports.
#ifndef QXSIM_SYSTEM_LIBRARY_H
#define QXSIM_SYSTEM_LIBRARY_H

#include <cstddef>
#include <optional>

namespace qxsim {

/// Commands received and not yet taken up, over all open services. Nothing where the library is a DLL: it exports its
/// calls and no more.
std::optional<std::size_t> QueuedCommands();

}  // namespace qxsim

#endif
