#include "unit/configuration/configured_service.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "common/text/hex.h"
#include "instrument/gpio.h"
#include "instrument/parameter_blocks.h"
#include "instrument/store.h"

namespace qxtest {

namespace {

using host::instrument::ParameterBlocks;
using host::instrument::ParameterValues;
using host::instrument::StoreItems;

constexpr WPARAM kLastNotice = 513;  // of ST_HAN
constexpr std::int64_t kReadItem = 61;
constexpr std::int64_t kWriteItem = 62;

std::string ValueText(const host::CallValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* real = std::get_if<double>(&value)) return std::to_string(*real);
  return "null";
}

std::string ItemText(const host::CallValue& value) {
  char text[16];
  std::snprintf(text, sizeof text, "%06" PRIX64, static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
  return text;
}

bool IsStoreCall(const host::CallRecord& record) {
  const auto* ordinal = std::get_if<std::int64_t>(&record.call);
  return record.library == "QxSystem" && ordinal != nullptr && (*ordinal == kReadItem || *ordinal == kWriteItem);
}

std::string CallText(const host::CallRecord& record) {
  std::string text = ValueText(record.call) + "(";
  for (std::size_t i = 0; i < record.args.size(); ++i) {
    const bool is_item = i == 0 && IsStoreCall(record);
    text += (i == 0 ? "" : ", ") + (is_item ? ItemText(record.args[i]) : ValueText(record.args[i]));
  }
  return text + ")";
}

host::Fault FaultOf(const std::string& library, const std::string& call, std::uint64_t nth) {
  host::Fault fault;
  fault.library = library;
  fault.call = call;
  fault.nth = nth;
  return fault;
}

}  // namespace

DeliveredConfiguration::DeliveredConfiguration() { Deliver(); }
DeliveredConfiguration::~DeliveredConfiguration() { Deliver(); }

void DeliveredConfiguration::Deliver() {
  host::ClearFaults();
  SetParameters({});
  host::instrument::Store().Change([](StoreItems& items) {
    items = host::instrument::StandardStoreItems();
    return 0;
  });
  host::instrument::ParameterBlock().Change([](ParameterBlocks& blocks) {
    blocks = host::instrument::StandardParameterBlocks();
    return 0;
  });
  host::instrument::Sensors::Instance().Reset();
  host::instrument::Gpio::Instance().Reset();
}

ParameterValues DeliveredConfiguration::parameters() {
  return host::instrument::Parameters().See([](const ParameterValues& values) { return values; });
}

void DeliveredConfiguration::SetParameters(const ParameterValues& values) {
  host::instrument::Parameters().Change([&](ParameterValues& kept) {
    kept = values;
    return 0;
  });
}

std::string DeliveredConfiguration::Item(std::uint32_t item) {
  return host::instrument::Store().See([item](const StoreItems& items) {
    const auto found = items.find(item);
    return found == items.end() ? "none" : host::HexOf(found->second);
  });
}

void DeliveredConfiguration::SetItem(std::uint32_t item, const std::string& bytes) {
  auto value = host::BytesOfHex(bytes).value();
  value.resize(host::instrument::StoreItemSize(item));
  host::instrument::Store().Change([&](StoreItems& items) {
    items[item] = value;
    return 0;
  });
}

void DeliveredConfiguration::SetBrandAndName(const std::u16string& text) {
  SetItem(0x090821, DigitsOf(text.data(), text.size() * sizeof text[0]));
}

void DeliveredConfiguration::RemoveItem(std::uint32_t item) {
  host::instrument::Store().Change([item](StoreItems& items) {
    items.erase(item);
    return 0;
  });
}

std::string DeliveredConfiguration::Block(std::uint8_t number) {
  return host::instrument::ParameterBlock().See([number](const ParameterBlocks& blocks) {
    const auto found = blocks.find(number);
    return found == blocks.end() ? "none" : host::HexOf(found->second);
  });
}

void DeliveredConfiguration::SetBlock(std::uint8_t number, const std::string& bytes) {
  host::instrument::ParameterBlock().Change([&](ParameterBlocks& blocks) {
    blocks[number] = host::BytesOfHex(bytes).value();
    return 0;
  });
}

int DeliveredConfiguration::Line(std::uint32_t line) {
  const auto levels = host::instrument::Gpio::Instance().levels();
  const auto found = levels.find(line);
  return found == levels.end() ? -1 : static_cast<int>(found->second);
}

void DeliveredConfiguration::FailCalls(const std::string& library, const std::string& call, std::uint64_t nth,
                                       std::uint64_t times) {
  host::Fault fault = FaultOf(library, call, nth);
  fault.times = times;
  fault.error = ERROR_IO_DEVICE;
  host::AddFault(fault);
}

void DeliveredConfiguration::DelayCall(const std::string& library, const std::string& call, std::uint32_t milliseconds,
                                       std::uint64_t nth) {
  host::Fault fault = FaultOf(library, call, nth);
  fault.delay_ms = milliseconds;
  host::AddFault(fault);
}

std::string DeliveredConfiguration::DigitsOf(const void* bytes, std::size_t count) { return host::HexOf(bytes, count); }

Texts ConfiguredService::CallsOf(const Texts& libraries) const {
  Texts calls;
  for (const host::CallRecord& record : host::CallsSince(begin_, nullptr)) {
    const bool wanted = std::find(libraries.begin(), libraries.end(), record.library) != libraries.end();
    if (wanted) calls.push_back(CallText(record));
  }
  return calls;
}

Configuration::Configuration() {
  service_.manager.notify_list().Register(window_.handle(), kNotice);
  service_.Forget();
}

Texts Configuration::Notices() {
  EXPECT_EQ(Answer("ST_HAN,HAN=1"), "ok");
  std::vector<SeenMessage> seen;
  EXPECT_TRUE(WaitUntil([&] {
    seen = window_.seen();
    return seen.size() > told_ && seen.back().wparam == kLastNotice;
  }));
  Texts notices;
  for (; told_ < seen.size(); ++told_) {
    notices.push_back(std::to_string(seen[told_].wparam) + " " + std::to_string(seen[told_].lparam));
  }
  if (!notices.empty()) notices.pop_back();
  return notices;
}

OtherOwner::OtherOwner(const std::u16string& name) : mutex_(CreateMutexW(nullptr, FALSE, name.c_str())) {}

OtherOwner::~OtherOwner() { CloseHandle(mutex_); }

bool OtherOwner::IsFree() const {
  const bool taken = WaitForSingleObject(mutex_, 0) == WAIT_OBJECT_0;
  if (taken) ReleaseMutex(mutex_);
  return taken;
}

}  // namespace qxtest
