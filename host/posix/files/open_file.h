// One open file: its data and the position in it.
#ifndef QXHOST_POSIX_FILES_OPEN_FILE_H
#define QXHOST_POSIX_FILES_OPEN_FILE_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "common/streams/streams.h"
#include "posix/disk/places.h"
#include "posix/files/shares.h"
#include "posix/kernel/file_descriptor.h"

namespace host {

/// Calls on one open file follow one another, as they do for a handle that is not overlapped.
class OpenFile final : public Stream {
 public:
  OpenFile(std::string name, FileDescriptor file, DWORD access, std::unique_ptr<Share> share);

  std::string Name() const override { return name_; }
  bool CallsListed() const override { return true; }

  /// At the end: success with no byte. Error 5 when the file was not opened for reading.
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;

  /// Writes all, or nothing that shows: what does not fit on the disk (112) leaves size and position as they were;
  /// bytes inside the old size may have changed. Error 5 when the file was not opened for writing.
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;

  /// The new position; -1 with the last error set when there is none: 87 for an unknown method or a position that
  /// cannot be told, 131 for one before the start.
  std::int64_t Seek(std::int64_t distance, DWORD method, bool fits_32_bits);

  const FileId& id() const { return share_->file(); }
  /// For attributes and times; good as long as the file is open.
  int descriptor() const { return file_.get(); }

 private:
  DWORD WriteAtPosition(const char* bytes, DWORD count);
  std::uint64_t Size() const;

  const std::string name_;  // UTF-8
  const FileDescriptor file_;
  const DWORD access_;
  const std::unique_ptr<Share> share_;
  std::mutex mutex_;
  std::int64_t position_ = 0;  // guarded by mutex_
};

struct OpenMode {
  DWORD access;       ///< GENERIC_READ and/or GENERIC_WRITE
  DWORD share;        ///< FILE_SHARE_READ, FILE_SHARE_WRITE, both or none
  DWORD disposition;  ///< CREATE_NEW or OPEN_EXISTING
};

/// Opens what a path led to. With the lock of names held. Returns 0 or the error.
DWORD OpenAt(const Place& place, std::u16string_view path, const OpenMode& mode, std::shared_ptr<OpenFile>* file);

}  // namespace host

#endif
