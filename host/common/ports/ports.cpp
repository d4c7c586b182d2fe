#include "common/ports/ports.h"

#include <windows.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

#include "common/calls/errors.h"
#include "common/ports/port_options.h"
#include "common/streams/devices.h"

namespace host {
namespace {

std::atomic<bool> ports_shared{false};
std::atomic<std::uint32_t> pace{0};

PortObserver& Observer() {
  static auto* observer = new PortObserver;  // bytes may still pass while the process ends
  return *observer;
}

struct GateTable {
  std::mutex mutex;
  std::map<std::string, PortGate, std::less<>> gates;  // by port; guarded by mutex
};

GateTable& Gates() {
  static auto* table = new GateTable;  // gates are set before main begins, and asked while the process ends
  return *table;
}

bool IsThere(const std::string& port) {
  PortGate gate;
  {
    GateTable& table = Gates();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.gates.find(port);
    if (found != table.gates.end()) gate = found->second;
  }
  return !gate || gate();
}

std::shared_ptr<Stream> OpenPort(const std::string& port, const std::function<std::shared_ptr<Stream>()>& open,
                                 const OpenRequest& request) {
  if (!IsThere(port)) return Fail(ERROR_FILE_NOT_FOUND, std::shared_ptr<Stream>());
  const bool both_ways = request.access == (GENERIC_READ | GENERIC_WRITE);
  const bool plain = request.flags == 0 || request.flags == FILE_ATTRIBUTE_NORMAL;
  if (both_ways && plain && request.share == 0 && request.disposition == OPEN_EXISTING) return open();
  return Fail(ERROR_INVALID_PARAMETER, std::shared_ptr<Stream>());
}

}  // namespace

void AttachLine(std::string port, std::function<std::shared_ptr<Stream>()> open) {
  RegisterDevice(port, [=](const OpenRequest& request) { return OpenPort(port, open, request); });
}

void DetachPort(std::string_view port) { UnregisterDevice(port); }

void GatePort(std::string_view port, PortGate is_there) {
  GateTable& table = Gates();
  const std::lock_guard<std::mutex> lock(table.mutex);
  table.gates[std::string(port)] = std::move(is_there);
}

void SharePorts(bool shared) { ports_shared = shared; }
bool PortsShared() { return ports_shared; }

void PacePorts(std::uint32_t baud) { pace = baud; }
std::uint32_t PortPace() { return pace.load(std::memory_order_relaxed); }

void SetPortObserver(PortObserver observer) { Observer() = std::move(observer); }

void ShowPortBytes(std::string_view port, bool in, std::string_view bytes) {
  if (const PortObserver& observer = Observer()) observer(port, in, bytes);
}

}  // namespace host
