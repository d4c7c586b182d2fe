// Diagnostics.
#include "api/diagnostics.h"

#include "api/open_services.h"

namespace qxcm {

std::size_t QueuedCommands() {
  std::size_t queued = 0;
  for (const auto& manager : OpenServices::Instance().All()) queued += manager->processor().commands().size();
  return queued;
}

}  // namespace qxcm
