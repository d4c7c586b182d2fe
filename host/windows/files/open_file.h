// One open file, around the system's own handle.
#ifndef QXHOST_WINDOWS_FILES_OPEN_FILE_H
#define QXHOST_WINDOWS_FILES_OPEN_FILE_H

#include <windows.h>

#include <cstdint>
#include <mutex>
#include <string>

#include "common/streams/streams.h"
#include "windows/files/open_paths.h"
#include "windows/kernel/system_handle.h"

namespace host {

/// Calls on one open file follow one another, as they do for a handle that is not overlapped. What the file was opened
/// for, and the position in it, are the handle's.
class OpenFile final : public Stream {
 public:
  /// \param name  the path it was opened by (UTF-8)
  /// \param path  where it is on this machine
  OpenFile(std::string name, WideString path, SystemHandle file);

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

  std::uint64_t Size() const;
  /// Where it is on this machine.
  const WideString& path() const { return path_.path(); }

 private:
  DWORD WriteAt(std::uint64_t position, const void* buffer, DWORD bytes);
  void CutTo(std::uint64_t size);

  const std::string name_;
  const OpenPath path_;
  const SystemHandle file_;
  std::mutex mutex_;  // held for a whole call: position and size stay while one works with them
};

}  // namespace host

#endif
