#include "unit/instrument/device_bus.h"

#include "common/text/hex.h"
#include "instrument/gpio.h"
#include "instrument/radio.h"

namespace qxtest {
namespace {

void ResetDevices() {
  host::ClearFaults();
  host::instrument::LoadDrivers();
  host::instrument::Sensors::Instance().Reset();
  host::instrument::Gpio::Instance().Reset();
  auto& radio = host::instrument::Radio::Instance();
  radio.SetMode(radio.kDiscoverable);
  radio.SetCanSwitch(true);
  radio.SetPortUpAfterMs(0);
}

std::string ValueText(const host::CallValue& value) {
  if (std::holds_alternative<std::nullptr_t>(value)) return "null";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  return '"' + std::get<std::string>(value) + '"';
}

std::string Name(const host::CallValue& call) {
  const auto* name = std::get_if<std::string>(&call);
  return name != nullptr ? *name : ValueText(call);
}

}  // namespace

Devices::Devices() {
  ResetDevices();
  host::EnableCallLog(true);
  host::CallsSince(0, &start_);
}

Devices::~Devices() {
  host::EnableCallLog(false);
  ResetDevices();
}

HANDLE Devices::Open(LPCWSTR name) {
  return CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

void Devices::Fault(const std::string& library, const host::CallValue& call, std::uint32_t error) {
  host::Fault fault;
  fault.library = library;
  fault.call = call;
  fault.error = error;
  host::AddFault(fault);
}

std::vector<std::string> Devices::Listed() const {
  std::vector<std::string> lines;
  for (const host::CallRecord& record : host::CallsSince(start_, nullptr)) {
    const std::string name = Name(record.call);
    std::string line = record.library + " " + name + "(";
    for (const host::CallValue& value : record.args) line += (line.back() == '(' ? "" : ", ") + ValueText(value);
    const bool handle = name == "open" && record.result != host::CallValue(std::int64_t{-1});
    lines.push_back(line + ") = " + (handle ? "handle" : ValueText(record.result)));
  }
  return lines;
}

bool SensorBus::Write(std::uint8_t address, const std::string& sent) const {
  std::vector<std::uint8_t> in = host::BytesOfHex(sent).value();
  in.insert(in.begin(), address);
  DWORD returned = 77;
  const BOOL written =
      DeviceIoControl(bus_, kI2cCode, in.data(), static_cast<DWORD>(in.size()), nullptr, 0, &returned, nullptr);
  EXPECT_EQ(returned, 0u);
  return written != FALSE;
}

std::string SensorBus::Transfer(std::uint8_t address, const std::string& sent, DWORD count) const {
  std::vector<std::uint8_t> in = host::BytesOfHex(sent).value();
  in.insert(in.begin(), address);
  std::vector<std::uint8_t> out(count + 1);
  DWORD returned = 77;
  const BOOL done =
      DeviceIoControl(bus_, kI2cCode, in.data(), static_cast<DWORD>(in.size()), out.data(), count, &returned, nullptr);
  EXPECT_EQ(returned, done ? count : 0u);
  return done ? host::HexOf(out.data(), count) : "error " + std::to_string(GetLastError());
}

std::string SensorBus::Answer(std::uint8_t address, const std::string& sent, DWORD count) const {
  return Write(address, sent) ? Read(address, count) : "error " + std::to_string(GetLastError());
}

}  // namespace qxtest
