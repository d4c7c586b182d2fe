#include "qxsim/system/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "posix/kernel/file_descriptor.h"
#include "qxsim/start_error.h"

namespace qxsim {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& file) {
  throw StartError("home: " + file.string() + ": " + std::strerror(errno));
}

bool WriteAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

/// A new file with this text, on the disk when it returns 0; else errno.
int WriteFile(const std::filesystem::path& file, const std::string& text) {
  const host::FileDescriptor descriptor(open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
  const bool written = descriptor.get() >= 0 && WriteAll(descriptor.get(), text) && fdatasync(descriptor.get()) == 0;
  return written ? 0 : errno;
}

}  // namespace

KeptFile::KeptFile(std::filesystem::path file) : file_(std::move(file)), new_file_(file_.string() + ".new") {
  if (unlink(new_file_.c_str()) != 0 && errno != ENOENT) Fail(new_file_);
}

std::optional<std::string> KeptFile::Read() const {
  const host::FileDescriptor descriptor(open(file_.c_str(), O_RDONLY | O_CLOEXEC));
  if (descriptor.get() < 0 && errno == ENOENT) return std::nullopt;
  if (descriptor.get() < 0) Fail(file_);
  std::string text;
  char bytes[65536];
  ssize_t count;
  while ((count = read(descriptor.get(), bytes, sizeof bytes)) > 0) text.append(bytes, static_cast<std::size_t>(count));
  if (count < 0) Fail(file_);
  return text;
}

int KeptFile::Replace(const std::string& text) const {
  int error = WriteFile(new_file_, text);
  if (error == 0 && rename(new_file_.c_str(), file_.c_str()) != 0) error = errno;
  if (error != 0) unlink(new_file_.c_str());
  return error == EDQUOT ? ENOSPC : error;
}

std::FILE* OpenTextFile(const std::filesystem::path& file) { return std::fopen(file.c_str(), "we"); }

}  // namespace qxsim
