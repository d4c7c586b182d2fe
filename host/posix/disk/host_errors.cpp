#include "posix/disk/host_errors.h"

#include <cerrno>

namespace host {
namespace {

struct ErrorRow {
  int host;
  DWORD platform;
};

constexpr ErrorRow kErrors[] = {
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ELOOP, ERROR_FILE_NOT_FOUND},  // a symbolic link: there is no such file
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EACCES, ERROR_ACCESS_DENIED},
    {EPERM, ERROR_ACCESS_DENIED},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EEXIST, ERROR_ACCESS_DENIED},  // the name is taken by what is no file of the instrument
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EXDEV, ERROR_NOT_SAME_DEVICE},
    {EROFS, ERROR_WRITE_PROTECT},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {ENOTSUP, ERROR_NOT_SUPPORTED},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {EFBIG, ERROR_DISK_FULL},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {EIO, ERROR_IO_DEVICE},
};

}  // namespace

DWORD ErrorFrom(int host_error) {
  for (const ErrorRow& row : kErrors) {
    if (row.host == host_error) return row.platform;
  }
  return ERROR_GEN_FAILURE;
}

DWORD HostError() { return ErrorFrom(errno); }

}  // namespace host
