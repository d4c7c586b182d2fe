#include "qxsim/system/library.h"

#include "api/diagnostics.h"

namespace qxsim {

std::optional<std::size_t> QueuedCommands() { return qxcm::QueuedCommands(); }

}  // namespace qxsim
