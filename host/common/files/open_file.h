// One open file, and what is asked before one is opened.
#ifndef QXHOST_COMMON_FILES_OPEN_FILE_H
#define QXHOST_COMMON_FILES_OPEN_FILE_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "common/disk/places.h"
#include "common/streams/devices.h"

namespace host {

/// Calls on one open file follow one another, as they do for a handle that is not overlapped.
class OpenFile : public Stream {
 public:
  /// \param name  the path it was opened by (UTF-8)
  explicit OpenFile(std::string name) : name_(std::move(name)) {}

  std::string Name() const override { return name_; }
  bool CallsListed() const override { return true; }

  /// At the end: success with no byte. Error 5 when the file was not opened for reading.
  BOOL Read(void* buffer, DWORD bytes, DWORD* read) override = 0;

  /// Writes all, or nothing that shows: what does not fit on the disk (112) leaves size and position as they were;
  /// bytes inside the old size may have changed. Error 5 when the file was not opened for writing.
  BOOL Write(const void* buffer, DWORD bytes, DWORD* written) override = 0;

  /// The new position; -1 with the last error set when there is none: 87 for an unknown method or a position that
  /// cannot be told, 131 for one before the start.
  virtual std::int64_t Seek(std::int64_t distance, DWORD method, bool fits_32_bits) = 0;

 private:
  const std::string name_;
};

/// Why a file cannot be made at the place: 80 when there is something, 123 for a path that speaks of a folder, or what
/// ChangeRefused says. Else 0.
DWORD CheckNew(const Place& place);

/// Why a file at the place cannot be opened: 2, 5 for a folder or when a read-only file shall be written, 123. Else 0.
DWORD CheckExisting(const Place& place, DWORD access);

class DiskFile;  // the host's own OpenFile: files/disk_file.h

/// Opens or makes the file, when CheckExisting or CheckNew finds nothing against it. With the lock of names held.
/// Returns 0 or the error. The host's own.
///
/// \param path     as the call has it
/// \param request  GENERIC_READ, GENERIC_WRITE or both; CREATE_NEW or OPEN_EXISTING
DWORD OpenAt(const Place& place, WideView path, const OpenRequest& request, std::shared_ptr<DiskFile>* file);

}  // namespace host

#endif
