#include "instrument/i2c_bus.h"

#include <algorithm>
#include <optional>

#include "common/calls/entry.h"
#include "common/calls/errors.h"
#include "common/text/hex.h"
#include "instrument/driver_stream.h"
#include "instrument/sensors.h"

namespace host::instrument {
namespace {

constexpr char kBusName[] = "I2C5:";
constexpr DWORD kTransferCode = 0xA8D42000;
constexpr DWORD kTooLong = 1024;

struct Outcome {
  BOOL succeeded;
  std::optional<Bytes> read;
};

}  // namespace
}  // namespace host::instrument

/// Listed as what was read, or for all other transfers whether it succeeded.
template <>
struct host::CallResult<host::instrument::Outcome> {
  static CallValue Listed(const instrument::Outcome& outcome) {
    if (outcome.read) return HexOf(outcome.read->data(), outcome.read->size());
    return std::int64_t{outcome.succeeded};
  }
  static instrument::Outcome Failed(std::int64_t number) { return {static_cast<BOOL>(number), std::nullopt}; }
};

namespace host::instrument {
namespace {

class I2cBus final : public DriverStream {
 public:
  std::string Name() const override { return kBusName; }
  BOOL Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned) override;

 private:
  static Outcome Transfer(std::uint8_t address, const Bytes& sent, std::optional<DWORD> wanted);
};

Outcome I2cBus::Transfer(std::uint8_t address, const Bytes& sent, std::optional<DWORD> wanted) {
  if (sent.size() + 1 >= kTooLong) return Fail(ERROR_INVALID_PARAMETER, Outcome{FALSE, std::nullopt});
  std::optional<Bytes> read;
  if (wanted) read.emplace(*wanted);
  const bool answered = Sensors::Instance().Transfer(address, sent, read ? &*read : nullptr);
  if (!answered) return Fail(ERROR_IO_DEVICE, Outcome{FALSE, std::nullopt});
  return {TRUE, std::move(read)};
}

BOOL I2cBus::Control(DWORD code, const void* in, DWORD in_bytes, void* out, DWORD out_bytes, DWORD* returned) {
  if (code != kTransferCode) return Fail(ERROR_NOT_SUPPORTED, FALSE);
  if (in_bytes == 0) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const auto* bytes = static_cast<const std::uint8_t*>(in);
  const Bytes sent(bytes + 1, bytes + in_bytes);
  const bool reads = out != nullptr;
  const char* const call = !reads ? "write" : sent.empty() ? "read" : "transfer";
  const Outcome outcome = Entry(
      kBusName, call, true,
      [&] {
        return CallValues{bytes[0], HexOf(sent.data(), sent.size()), out_bytes};
      },
      [&] { return Transfer(bytes[0], sent, reads ? std::optional<DWORD>(out_bytes) : std::nullopt); });
  if (!outcome.read) return outcome.succeeded;
  std::copy(outcome.read->begin(), outcome.read->end(), static_cast<std::uint8_t*>(out));
  *returned = out_bytes;
  return outcome.succeeded;
}

}  // namespace

void LoadI2cDriver() { RegisterDriver<I2cBus>(kBusName); }
void UnloadI2cDriver() { UnregisterDevice(kBusName); }

}  // namespace host::instrument
