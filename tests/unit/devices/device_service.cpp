#include "unit/devices/device_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "common/kernel/handles.h"
#include "common/streams/devices.h"
#include "common/streams/streams.h"
#include "common/sync/sync.h"
#include "common/system/identity.h"
#include "common/text/utf.h"
#include "instrument/driver_stream.h"
#include "instrument/gpio.h"
#include "instrument/i2c_bus.h"
#include "instrument/radio.h"
#include "instrument/store.h"

namespace qxtest {

namespace {

constexpr std::uint32_t kDistanceMeterTypeItem = 0xA40201;

std::int64_t Number(const host::CallValue& value) {
  const auto* number = std::get_if<std::int64_t>(&value);
  return number == nullptr ? -1 : *number;
}

std::string Text(const host::CallValue& value) {
  const auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

/// The address, what is sent, and how much is to be read.
std::string BusArguments(const host::CallRecord& record) {
  char address[8];
  std::snprintf(address, sizeof address, " %02X", static_cast<unsigned>(Number(record.args.at(0))));
  std::string text = address;
  const std::string sent = Text(record.args.at(1));
  if (!sent.empty()) text += " " + sent;
  if (Text(record.call) != "write") text += " " + std::to_string(Number(record.args.at(2)));
  return text;
}

std::string DeviceCallText(const host::CallRecord& record) {
  const std::string name = Text(record.call);
  if (name == "open") return Number(record.result) == -1 ? "open fails" : "open";
  if (name == "close") return name;
  const bool on_the_bus = record.args.size() == 3;
  std::string text = name;
  if (on_the_bus) {
    text += BusArguments(record);
  } else {
    for (const host::CallValue& value : record.args) text += " " + std::to_string(Number(value));
  }
  if (!Text(record.result).empty()) return text + " = " + Text(record.result);
  return Number(record.result) == 0 ? text + " fails" : text;
}

void LoadDrivers() {
  host::instrument::LoadI2cDriver();
  host::instrument::LoadGpioDriver();
}

}  // namespace

bool MutexExists(const std::string& name) {
  SetLastError(0);
  const HANDLE mutex = host::CreateMutexW(nullptr, FALSE, host::Utf8ToWide(name).c_str());
  const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
  host::CloseHandle(mutex);
  return existed;
}

Texts HeldMutexes() {
  Texts held;
  host::instrument::OtherProcess other;
  Texts names(std::begin(kSensorMutexes), std::end(kSensorMutexes));
  names.emplace_back(kLinesMutex);
  for (const std::string& name : names) {
    if (!other.Take(name, std::chrono::milliseconds(0))) held.push_back(name);
    other.Release(name);
  }
  return held;
}

void FailDevice(const std::string& device, const std::string& call, std::uint64_t times, std::uint64_t nth) {
  host::Fault fault;
  fault.library = device;
  fault.call = call;
  fault.nth = nth;
  fault.times = times;
  fault.error = ERROR_GEN_FAILURE;
  host::AddFault(fault);
}

void DelayCall(const std::string& library, const host::CallValue& call, std::chrono::milliseconds time,
               const std::string& on) {
  host::Fault fault;
  fault.library = library;
  fault.call = call;
  fault.delay_ms = static_cast<std::uint32_t>(time.count());
  if (!on.empty()) fault.on = on;
  host::AddFault(fault);
}

Texts DeviceCalls(const std::string& device, std::uint64_t since) {
  Texts calls;
  for (const host::CallRecord& record : host::CallsSince(since, nullptr)) {
    if (record.library == device) calls.push_back(DeviceCallText(record));
  }
  return calls;
}

// ---- WatchedDevice

class WatchedDevice::Watch final : public host::instrument::DriverStream {
 public:
  explicit Watch(WatchedDevice& watched) : watched_(watched) {}
  std::string Name() const override { return watched_.name_; }
  BOOL Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned) override {
    watched_.Look();
    return host::DeviceIoControl(watched_.device_, code, const_cast<void*>(in), in_bytes, out, out_bytes, returned,
                                 nullptr);
  }

 private:
  WatchedDevice& watched_;
};

WatchedDevice::WatchedDevice(std::string name)
    : name_(std::move(name)),
      device_(host::CreateFileW(host::Utf8ToWide(name_).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
  host::RegisterDevice(name_, [this](const host::OpenRequest& request) {
    Look();
    opening_ = {request.access, request.share, request.disposition, request.flags};
    return std::make_shared<Watch>(*this);
  });
}

WatchedDevice::~WatchedDevice() {
  host::CloseHandle(device_);
  LoadDrivers();
}

void WatchedDevice::Look() {
  std::string text;
  for (const std::string& name : HeldMutexes()) text += (text.empty() ? "" : " ") + name;
  const std::lock_guard<std::mutex> lock(mutex_);
  held_.push_back(text);
}

Texts WatchedDevice::TakeHeld() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(held_, {});
}

// ---- StandardDevices, DeviceService

StandardDevices::StandardDevices() { Reset(); }

StandardDevices::~StandardDevices() {
  Reset();
  LoadDrivers();
}

void StandardDevices::Reset() {
  host::ClearFaults();
  host::instrument::Sensors::Instance().Reset();
  host::instrument::Gpio::Instance().Reset();
  auto& radio = host::instrument::Radio::Instance();
  radio.SetMode(radio.kDiscoverable);
  radio.SetCanSwitch(true);
  radio.SetPortUpAfterMs(0);
  host::instrument::Store().Change([](host::instrument::StoreItems& items) {
    items = host::instrument::StandardStoreItems();
    return 0;
  });
  host::SetOsRevision(host::kStandardOsRevision);
  host::SetSystemLanguage(host::kStandardLanguage);
}

void StandardDevices::SetDistanceMeterType(std::uint8_t type) {
  host::instrument::Store().Change([type](host::instrument::StoreItems& items) {
    items[kDistanceMeterTypeItem] = {type};
    return 0;
  });
}

std::string DeviceService::Answer(const std::string& command) {
  ForgetBus();
  return ControllerService::Answer(command);
}

// The dispatcher wakes the instrument right before it calls the handler.
void DeviceService::Begin(const std::string& command) {
  ForgetBus();
  ForgetPlatformCalls();
  line.Send(CommandFrame(command));
  EXPECT_TRUE(WaitUntil([this] { return !PlatformCalls({"SystemIdleTimerReset"}).empty(); })) << command;
}

std::string DeviceService::Rest() {
  const std::string answer = line.TakeWithAcks(1);
  if (answer == kAck) return "ok";
  constexpr std::size_t kAround = 6;  // "R<", ">", checksum, CR, ACK
  const std::string text = answer.size() < kAround ? answer : answer.substr(2, answer.size() - kAround);
  EXPECT_EQ(answer, ReplyFrame(text) + std::string(kAck));
  return text;
}

}  // namespace qxtest
