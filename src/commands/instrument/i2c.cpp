// CM_I2C: a raw transfer on the sensors' bus.
//   C<CM_I2C,ADR=20,SDT=0011,RBT=5,WAT=1>  ->  R<I2C,STS=SCS,RDT=0000010002>, ACK
//   C<CM_I2C,ADR=44,SDT=00>                ->  R<I2C,STS=ER_FAL>, ACK             (nobody answers there)
#include <cstdint>
#include <optional>
#include <string>

#include "commands/instrument/devices/i2c_bus.h"
#include "commands/measure/valuetext/hex_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kAddress = "ADR";
constexpr std::string_view kSend = "SDT";
constexpr std::string_view kCount = "RBT";
constexpr std::string_view kWait = "WAT";
constexpr std::int32_t kMostBytes = 504;
constexpr int kAttempts = 4;
constexpr DWORD kPause = 50;  // milliseconds

struct Request {
  std::uint8_t address = 0;
  Bytes send;
  std::size_t count = 0;  // bytes to read back
  DWORD wait = 0;         // milliseconds between
};

std::int32_t NumberOf(const FieldMap& fields, std::string_view key) {
  const auto* text = fields.Find(key);
  return text == nullptr ? 0 : ParseLeadingInt(*text);
}

std::optional<Request> Read(const FieldMap& fields) {
  const auto* address = fields.Find(kAddress);
  if (address == nullptr) return std::nullopt;
  Request request;
  request.address = static_cast<std::uint8_t>(ParseLeadingHex(*address));
  const auto* send = fields.Find(kSend);
  if (send != nullptr && !HexToBytes(*send, &request.send)) return std::nullopt;
  const std::int32_t count = NumberOf(fields, kCount);
  if (count < 0 || count > kMostBytes) return std::nullopt;
  request.count = static_cast<std::size_t>(count);
  const std::int32_t wait = NumberOf(fields, kWait);
  request.wait = wait < 0 ? 0 : static_cast<DWORD>(wait);
  return request;
}

bool CarryOut(CommandProcessor& processor, const Request& request, Bytes* answer) {
  I2cSession session(processor.service().i2c_bus(), request.address, processor.stop_event());
  if (request.address == kTemperaturePressure) return session.Transfer(request.send, request.count, answer);
  if (!session.Write(request.send, kAttempts, kPause)) return false;
  return request.count == 0 || (session.Wait(request.wait) && session.Read(request.count, answer));
}

}  // namespace

std::int32_t CmI2c(CommandProcessor& processor, const FieldMap& fields) {
  const std::optional<Request> request = Read(fields);
  if (!request) return kBadParameter;
  Bytes answer;
  const bool done = CarryOut(processor, *request, &answer);
  Reply reply("I2C");
  reply.Add("STS", done ? "SCS" : "ER_FAL");
  std::string hex;
  if (done) BytesToHex(answer.data(), answer.size(), &hex);
  if (request->count != 0) reply.Add("RDT", hex);
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
