// An open file on this host, around the system's own handle.
#ifndef QXHOST_WINDOWS_FILES_DISK_FILE_H
#define QXHOST_WINDOWS_FILES_DISK_FILE_H

#include <windows.h>

#include <cstdint>
#include <mutex>
#include <string>

#include "common/files/open_file.h"
#include "windows/files/open_paths.h"
#include "windows/kernel/system_handle.h"

namespace host {

/// What the file was opened for, and the position in it, are the handle's.
class DiskFile final : public OpenFile {
 public:
  /// \param path  where it is on this machine
  DiskFile(std::string name, WideString path, SystemHandle file);

  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override;
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override;
  std::int64_t Seek(std::int64_t distance, DWORD method, bool fits_32_bits) override;

  std::uint64_t Size() const;
  /// Where it is on this machine.
  const WideString& path() const { return path_.path(); }

 private:
  DWORD WriteAt(std::uint64_t position, const void* buffer, DWORD bytes);
  void CutTo(std::uint64_t size);

  const OpenPath path_;
  const SystemHandle file_;
  std::mutex mutex_;  // held for a whole call: position and size stay while one works with them
};

}  // namespace host

#endif
