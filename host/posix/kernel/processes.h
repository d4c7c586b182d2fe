// Which processes of this machine are alive.
#ifndef QXHOST_POSIX_KERNEL_PROCESSES_H
#define QXHOST_POSIX_KERNEL_PROCESSES_H

#include <cstdint>
#include <optional>

namespace host {

/// When the process was started, in the kernel's clock ticks since boot; nothing when there is no such process, or
/// only its remains that its parent has not collected yet.
std::optional<std::uint64_t> ProcessStart(std::uint32_t pid);

}  // namespace host

#endif
