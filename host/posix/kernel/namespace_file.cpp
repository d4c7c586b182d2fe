#include "posix/kernel/namespace_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <system_error>

#include "posix/kernel/file_descriptor.h"

namespace host {
namespace {

constexpr std::uint32_t kFormat = 0x51584F32;  // changes with the layout

[[noreturn]] void Throw(int error, const std::string& path) {
  throw std::system_error(error, std::generic_category(), path);
}

void InitialiseLock(pthread_mutex_t* lock) {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  pthread_mutex_init(lock, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

NamespaceFile* Map(const FileDescriptor& file, const std::string& path) {
  void* memory = mmap(nullptr, sizeof(NamespaceFile), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  if (memory == MAP_FAILED) Throw(errno, path);
  return static_cast<NamespaceFile*>(memory);
}

// The file appears under its name only when it is whole; the first of several processes wins.
void MakeFile(const std::string& directory, const std::string& path) {
  std::string made = directory + "/.objects-XXXXXX";
  const FileDescriptor file(mkstemp(made.data()));
  if (file.get() < 0) Throw(errno, made);
  if (ftruncate(file.get(), sizeof(NamespaceFile)) != 0) Throw(errno, made);
  NamespaceFile* contents = Map(file, made);
  contents->format = kFormat;
  contents->size = sizeof(NamespaceFile);
  new (&contents->changes) FutexWord(0);
  InitialiseLock(&contents->lock);
  UnmapNamespaceFile(contents);
  const int error = link(made.c_str(), path.c_str()) == 0 ? 0 : errno;
  unlink(made.c_str());
  if (error != 0 && error != EEXIST) Throw(error, path);
}

}  // namespace

NamespaceFile* MapNamespaceFile(const std::string& directory) {
  const std::string path = directory + "/objects";
  if (mkdir(directory.c_str(), S_IRWXU) != 0 && errno != EEXIST) Throw(errno, directory);
  FileDescriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC));
  if (file.get() < 0 && errno == ENOENT) {
    MakeFile(directory, path);
    file = FileDescriptor(open(path.c_str(), O_RDWR | O_CLOEXEC));
  }
  if (file.get() < 0) Throw(errno, path);
  struct stat status {};
  if (fstat(file.get(), &status) != 0) Throw(errno, path);
  if (status.st_size != sizeof(NamespaceFile)) Throw(EPROTO, path);
  NamespaceFile* contents = Map(file, path);
  if (contents->format == kFormat && contents->size == sizeof(NamespaceFile)) return contents;
  UnmapNamespaceFile(contents);
  Throw(EPROTO, path);
}

void UnmapNamespaceFile(NamespaceFile* file) { munmap(file, sizeof(NamespaceFile)); }

}  // namespace host
