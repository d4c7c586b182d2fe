#include "windows/ports/com_line.h"

#include <utility>

#include "common/text/utf.h"

namespace host {

ComLine::ComLine(std::string port, std::string device) : Line(std::move(port)), device_(std::move(device)) {}

SharedHandle ComLine::handle() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return handle_;
}

DWORD ComLine::Open() {
  const WideString path = TEXT("\\\\.\\") + Utf8ToWide(device_);
  auto handle = std::make_shared<const SystemHandle>(::CreateFileW(
      path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr));
  if (!handle->valid()) return GetLastError();
  handle_ = std::move(handle);
  return NO_ERROR;
}

// A call still under way keeps the handle for a moment longer.
void ComLine::Close() { handle_ = nullptr; }

}  // namespace host
