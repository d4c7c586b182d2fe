// An open file descriptor of this machine, closed by its owner.
#ifndef QXHOST_POSIX_KERNEL_FILE_DESCRIPTOR_H
#define QXHOST_POSIX_KERNEL_FILE_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace host {

class FileDescriptor {
 public:
  explicit FileDescriptor(int number = -1) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~FileDescriptor() {
    if (number_ >= 0) ::close(number_);
  }
  /// -1 when there is none.
  int get() const { return number_; }

 private:
  int number_;
};

}  // namespace host

#endif
