// Events, mutexes and blocks that processes of one virtual instrument share by name.
//
// The objects of one instrument have a folder to themselves; processes that shall meet use the same folder. On Linux
// they live in it, on Windows it only tells them from those of other instruments.
#ifndef QXHOST_COMMON_KERNEL_NAMED_OBJECTS_H
#define QXHOST_COMMON_KERNEL_NAMED_OBJECTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Uses this folder (created if missing) from now on, in this process and the children it starts: it goes into the
/// environment as QX_OBJECTS. Call it before other threads run. Throws std::system_error, or std::logic_error while
/// named objects of another folder are open.
void SetObjectNamespace(std::string directory);

/// The folder in use: as set, else $QX_OBJECTS, else a new private one, which is gone when the process has exited.
/// Throws std::system_error.
std::string ObjectNamespaceDirectory();

struct NamedMutexState {
  enum class Holder { kFree, kLibrary, kOther };
  std::string name;  ///< UTF-8
  Holder holder;     ///< kLibrary: taken in one of the library's calls, in this process
};

/// Every named mutex that some process has open; on Windows, that this process has.
std::vector<NamedMutexState> NamedMutexes();

/// A copy of a named block; nothing when no process has it open. Take the block's mutex around the call: the block's
/// users write it without any other lock.
std::optional<std::vector<std::uint8_t>> SharedBlock(std::string_view name);

}  // namespace host

#endif
