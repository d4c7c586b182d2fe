#include "qxsim/system/library.h"

namespace qxsim {

std::optional<std::size_t> QueuedCommands() { return std::nullopt; }

}  // namespace qxsim
