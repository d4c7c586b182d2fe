// Kernel objects and the handles that name them: small numbers, fit for a 32-bit field of a shared block.
#ifndef QXHOST_COMMON_KERNEL_HANDLES_H
#define QXHOST_COMMON_KERNEL_HANDLES_H

#include <windows.h>

#include <cstddef>
#include <memory>

namespace host {

/// Whatever a handle can name: an event, a mutex, a thread, a mapping, an open port, file or registry key.
class KernelObject {
 public:
  KernelObject() = default;
  KernelObject(const KernelObject&) = delete;
  KernelObject& operator=(const KernelObject&) = delete;
  virtual ~KernelObject() = default;

  /// False for what has a call of its own to close it: CloseHandle does not take its handles.
  virtual bool EndsWithCloseHandle() const { return true; }
  /// CloseHandle is about to take the handle away. False, with the last error set, leaves it as it is.
  virtual bool Closes() { return true; }
};

/// Gives the object a new handle. The handle counts as the library's when made inside one of the library's calls
/// (see InLibraryCall in calls.h). Null with last error 8 when there are too many.
HANDLE InsertHandle(std::shared_ptr<KernelObject> object);

/// The object behind a handle, or null; keeps it alive while used.
std::shared_ptr<KernelObject> FindObject(HANDLE handle);

/// The same for one kind of object; null and last error 6 when the handle names another kind or nothing.
template <class Object>
std::shared_ptr<Object> FindHandle(HANDLE handle) {
  auto object = std::dynamic_pointer_cast<Object>(FindObject(handle));
  if (object == nullptr) SetLastError(ERROR_INVALID_HANDLE);
  return object;
}

/// Takes a handle away, whatever it names. False when it names nothing.
bool RemoveHandle(HANDLE handle);

/// Handles that the library holds at present.
std::size_t LibraryHandles();

/// Threads made by the library that have not ended.
std::size_t LibraryThreads();

BOOL CloseHandle(HANDLE handle);

}  // namespace host

#endif
