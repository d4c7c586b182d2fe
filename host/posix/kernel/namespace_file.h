// Layout of the file that holds a namespace's objects, and its making.
#ifndef QXHOST_POSIX_KERNEL_NAMESPACE_FILE_H
#define QXHOST_POSIX_KERNEL_NAMESPACE_FILE_H

#include <pthread.h>

#include <cstdint>
#include <string>

#include "posix/sync/futex.h"

namespace host {

constexpr std::size_t kMostNamedObjects = 64;
constexpr std::size_t kMostProcesses = 64;
constexpr std::size_t kLongestName = 64;     // units
constexpr std::size_t kLargestBlock = 4096;  // bytes

enum class ObjectKind : std::uint32_t { kNone, kEvent, kMutex, kBlock };

struct EventState {
  bool manual_reset = false;
  bool set = false;
};

struct MutexState {
  std::uint32_t count = 0;    // how often the owner has taken it; 0: free
  std::uint32_t process = 0;  // of the owner: its entry's number from 1; 0 for an unnamed mutex
  std::uint32_t thread = 0;
  bool in_library_call = false;  // how the owner took it
  bool abandoned = false;        // the last owner ended without releasing it
};

struct ObjectSlot {
  ObjectKind kind;  // written last when the slot is filled
  std::uint32_t block_size;
  std::uint64_t holders;  // bit n: the process of entry n; 0: the slot is free
  std::uint64_t openers;  // those of them that have a handle; 0: nobody finds the name
  std::uint32_t name_length;
  char16_t name[kLongestName];
  EventState event;
  MutexState mutex;
  alignas(64) std::uint8_t block[kLargestBlock];
};
static_assert(kMostProcesses <= 64, "a process is a bit of holders");

struct ProcessEntry {
  std::uint32_t pid;      // 0: free
  std::uint64_t started;  // in the kernel's clock ticks: tells a new process of an old number
};

struct NamespaceFile {
  std::uint32_t format;
  std::uint32_t size;  // of this structure
  pthread_mutex_t lock;
  FutexWord changes;
  ProcessEntry processes[kMostProcesses];
  ObjectSlot slots[kMostNamedObjects];
};

/// Maps the folder's file of objects; makes both when missing. Throws std::system_error.
NamespaceFile* MapNamespaceFile(const std::string& directory);
void UnmapNamespaceFile(NamespaceFile* file);

}  // namespace host

#endif
