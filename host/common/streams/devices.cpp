#include "common/streams/devices.h"

#include <map>
#include <mutex>
#include <string>

#include "common/calls/entry.h"
#include "common/calls/errors.h"
#include "common/files/files.h"
#include "common/text/text.h"
#include "common/text/utf.h"

namespace host {
namespace {

struct Device {
  DeviceOpener opener;
  const char* library = nullptr;
};

struct DeviceTable {
  std::mutex mutex;
  std::map<WideString, Device> devices;  // by upper-case name; guarded by mutex
};

DeviceTable& Devices() {
  static auto* table = new DeviceTable;  // ports may still be opened and closed while the process ends
  return *table;
}

WideString Key(WideString name) {
  for (WCHAR& unit : name) unit = UpperCase(unit);
  return name;
}

/// Without an opener when there is no such device.
Device FindDevice(const WideString& name) {
  DeviceTable& table = Devices();
  const std::lock_guard<std::mutex> lock(table.mutex);
  const auto found = table.devices.find(Key(name));
  return found == table.devices.end() ? Device() : found->second;
}

// "COM5:": a colon at the end, and no folder in front.
bool IsDeviceName(const WideString& name) {
  return name.back() == TEXT(':') && name.find_first_of(TEXT("\\/")) == WideString::npos;
}

HANDLE OpenWith(const Device& device, LPCWSTR name, const OpenRequest& request) {
  std::shared_ptr<Stream> stream = device.opener ? device.opener(request) : OpenFileByPath(name, request);
  if (stream == nullptr) return INVALID_HANDLE_VALUE;
  const HANDLE handle = InsertHandle(std::make_shared<StreamHandle>(std::move(stream), device.library));
  return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
}

}  // namespace

void RegisterDevice(std::string_view name, DeviceOpener opener, const char* library) {
  DeviceTable& table = Devices();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.devices[Key(Utf8ToWide(name))] = {std::move(opener), library};
}

void UnregisterDevice(std::string_view name) {
  DeviceTable& table = Devices();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.devices.erase(Key(Utf8ToWide(name)));
}

bool ListsItsOwnCalls(LPCWSTR name) { return name != nullptr && FindDevice(name).library != nullptr; }

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES, DWORD disposition, DWORD flags,
                   HANDLE template_file) {
  if (name == nullptr || *name == 0) return Fail(ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE);
  if (template_file != nullptr) return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  const Device device = FindDevice(name);
  if (!device.opener && IsDeviceName(name)) return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE_VALUE);
  const auto open = [&] { return OpenWith(device, name, {access, share, disposition, flags}); };
  if (device.library == nullptr) return open();
  return Entry(
      device.library, "open", true, [] { return CallValues(); }, open, FailsWith::kMinusOne);
}

}  // namespace host
