// The table from platform error codes to status texts.
#include "commands/services/file_status.h"

#include <algorithm>
#include <string>

#include "protocol/command_processor.h"

namespace qxcm {

namespace {

struct Row {
  DWORD code;
  std::string_view status;
};

// A missing folder on the way (ERROR_PATH_NOT_FOUND) is no row: it is "ER_FAL", not "ER_FNE" (kept).
constexpr Row kRows[] = {
    {ERROR_SUCCESS, "SCS"},
    {ERROR_FILE_NOT_FOUND, "ER_FNE"},
    {ERROR_TOO_MANY_OPEN_FILES, "ER_FNH"},
    {ERROR_INVALID_HANDLE, "ER_FNH"},
    {ERROR_WRITE_PROTECT, "ER_FPT"},
    {ERROR_HANDLE_EOF, "EOF"},
    {ERROR_HANDLE_DISK_FULL, "ER_FDF"},
    {ERROR_DISK_FULL, "ER_FDF"},
    {ERROR_FILE_EXISTS, "ER_FAE"},
    {ERROR_ALREADY_EXISTS, "ER_FAE"},
    {ERROR_DIR_NOT_EMPTY, "ER_FNM"},
};
constexpr std::string_view kAnyOther = "ER_FAL";

}  // namespace

WideText ToDevicePath(std::string_view path) {
  WideText wide = WidenText(path);
  std::replace(wide.begin(), wide.end(), WCHAR('/'), WCHAR('\\'));
  return wide;
}

std::string_view FileStatus(DWORD code) {
  const auto* row = std::find_if(std::begin(kRows), std::end(kRows), [code](const Row& r) { return r.code == code; });
  return row == std::end(kRows) ? kAnyOther : row->status;
}

void FileStatusReply(CommandProcessor& processor, DWORD code, std::string_view tail, std::string_view head) {
  std::string text(head);
  text.append(",STS=").append(FileStatus(code)).append(tail);
  processor.service().SendReply(text);
}

}  // namespace qxcm
