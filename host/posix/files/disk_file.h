// An open file on this host: its data and the position in it.
#ifndef QXHOST_POSIX_FILES_DISK_FILE_H
#define QXHOST_POSIX_FILES_DISK_FILE_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/files/open_file.h"
#include "posix/disk/places.h"
#include "posix/files/shares.h"
#include "posix/kernel/file_descriptor.h"

namespace host {

class DiskFile final : public OpenFile {
 public:
  DiskFile(std::string name, FileDescriptor file, DWORD access, std::unique_ptr<Share> share);

  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;
  std::int64_t Seek(std::int64_t distance, DWORD method, bool fits_32_bits) override;

  const FileId& id() const { return share_->file(); }
  /// For attributes and times; good as long as the file is open.
  int descriptor() const { return file_.get(); }

 private:
  DWORD WriteAtPosition(const char* bytes, DWORD count);
  std::uint64_t Size() const;

  const FileDescriptor file_;
  const DWORD access_;
  const std::unique_ptr<Share> share_;
  std::mutex mutex_;
  std::int64_t position_ = 0;  // guarded by mutex_
};

}  // namespace host

#endif
