// GT_PIF: version and firmware checksum of one component.
//   C<GT_PIF,NAM=ANGLE,VER,SUM>     ->  R<PIF,NAM=ANGLE,SUM=1234,VER=1.2.3.4>, ACK      (three seconds later)
//   C<GT_PIF,NAM=OS,VER>            ->  R<PIF,NAM=Windows CE ENG,VER=6.0.2.1>, ACK
//   C<GT_PIF,NAM=tool,PTH=/tool.exe>  ->  R<PIF,NAM=tool,PVR=1.2.0.15>, ACK
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "commands/instrument/devices/i2c_bus.h"
#include "commands/instrument/store_items.h"
#include "commands/services/file_status.h"
#include "commands/services/module_version.h"
#include "platform/instrument_libraries.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kName = "NAM";
constexpr std::string_view kVersion = "VER";
constexpr std::string_view kChecksum = "SUM";
constexpr std::string_view kPath = "PTH";
constexpr DWORD kVersionPause = 10;     // milliseconds
constexpr DWORD kChecksumPause = 3000;  // the component works it out meanwhile
constexpr LANGID kJapanese = 1041;

/// One command to a component, and its answer a while later; nothing when a transfer failed.
struct Query {
  std::uint8_t address;
  Bytes command;
  DWORD pause;
  std::size_t answer_size;
};

std::optional<Bytes> Ask(CommandProcessor& processor, const Query& query) {
  I2cSession session(processor.service().i2c_bus(), query.address, processor.stop_event());
  Bytes answer;
  if (!session.Write(query.command) || !session.Wait(query.pause) || !session.Read(query.answer_size, &answer)) {
    return std::nullopt;
  }
  return answer;
}

std::string Dotted(unsigned a, unsigned b, unsigned c, unsigned d) {
  char text[64];
  std::snprintf(text, sizeof text, "%u.%u.%u.%u", a, b, c, d);
  return text;
}

using Version = std::optional<std::string>;
using Checksum = std::optional<std::uint32_t>;

// ---- Distance meter

Version VnsVersion(const Bytes& answer) {
  const unsigned word = answer[2] * 256u + answer[1];
  char text[64];
  std::snprintf(text, sizeof text, "%s%u.%u.%02u", (word & 0x8000) != 0 ? "R" : "", word >> 12 & 7, word >> 8 & 15,
                static_cast<unsigned>(answer[1]));
  return text;
}

Version DistanceMeterVersion(CommandProcessor& processor, std::uint8_t command) {
  const bool vns = IsVnsDistanceMeter();
  const auto answer = Ask(processor, {kDistanceMeter, {0xC0, command}, kVersionPause, vns ? 3u : 5u});
  if (!answer) return std::nullopt;
  return vns ? VnsVersion(*answer) : Dotted((*answer)[4], (*answer)[3], (*answer)[2], (*answer)[1]);
}

Version EdmVersion(CommandProcessor& processor) { return DistanceMeterVersion(processor, 0x07); }
Version EdmFpgaVersion(CommandProcessor& processor) { return DistanceMeterVersion(processor, 0x09); }

Checksum EdmChecksum(CommandProcessor& processor) {
  if (IsVnsDistanceMeter()) return 0;
  const auto answer = Ask(processor, {kDistanceMeter, {0xC0, 0x08}, kChecksumPause, 3});
  if (!answer) return std::nullopt;
  return (*answer)[2] * 256u + (*answer)[1];
}

// ---- Angle sensor board

Version AngleVersion(CommandProcessor& processor) {
  const auto answer = Ask(processor, {kTiltSensor, {0x00, 0x01}, kVersionPause, 5});
  if (!answer) return std::nullopt;
  return Dotted((*answer)[1], (*answer)[2], (*answer)[3], (*answer)[4]);
}

Checksum AngleChecksum(CommandProcessor& processor) {
  const auto answer = Ask(processor, {kTiltSensor, {0x00, 0x02}, kChecksumPause, 3});
  if (!answer) return std::nullopt;
  return (*answer)[1] * 256u + (*answer)[2];
}

// ---- Focus drive: byte 0 of its answers tells an error

Version FocusVersion(CommandProcessor& processor) {
  const auto answer = Ask(processor, {kFocusDrive, {0xC0, 0x07}, kVersionPause, 5});
  if (!answer || (*answer)[0] != 0) return std::nullopt;
  return Dotted((*answer)[1], (*answer)[2], (*answer)[3], (*answer)[4]);
}

Checksum FocusChecksum(CommandProcessor& processor) {
  const auto answer = Ask(processor, {kFocusDrive, {0xC0, 0x08}, kVersionPause, 3});
  if (!answer || (*answer)[0] != 0) return std::nullopt;
  return (*answer)[1] + (*answer)[2] * 256u;
}

struct Component {
  std::string_view name;
  Version (*version)(CommandProcessor& processor);
  Checksum (*checksum)(CommandProcessor& processor);  // null: not offered, asking for it is ignored
};
constexpr Component kComponents[] = {
    {"EDM", EdmVersion, EdmChecksum},
    {"EDMFPGA", EdmFpgaVersion, nullptr},
    {"ANGLE", AngleVersion, AngleChecksum},
    {"FOCUS", FocusVersion, FocusChecksum},
};

std::int32_t AnswerComponent(CommandProcessor& processor, const FieldMap& fields, const Component& component) {
  Reply reply("PIF");
  reply.Add(kName, component.name);
  if (fields.Has(kChecksum) && component.checksum != nullptr) {
    const Checksum checksum = component.checksum(processor);
    if (!checksum) return kTransferFailed;
    reply.AddHex(kChecksum, *checksum, 4);
  }
  if (fields.Has(kVersion)) {
    const Version version = component.version(processor);
    if (!version) return kTransferFailed;
    reply.Add(kVersion, *version);
  }
  processor.SendReply(reply);
  return kDone;
}

std::int32_t AnswerOperatingSystem(CommandProcessor& processor, const FieldMap& fields) {
  if (fields.Has(kChecksum)) return kBadParameter;
  Reply reply("PIF");
  reply.Add(kName, GetSystemDefaultLangID() == kJapanese ? "Windows CE JPN" : "Windows CE ENG");
  if (fields.Has(kVersion)) {
    const DWORD revision = GetProductOSRevision();
    reply.Add(kVersion, Dotted(revision >> 24, revision >> 16 & 0xFF, revision >> 8 & 0xFF, revision & 0xFF));
  }
  processor.SendReply(reply);
  return kDone;
}

std::int32_t AnswerFile(CommandProcessor& processor, std::string_view name, const FieldMap& fields) {
  const auto* path = fields.Find(kPath);
  if (path == nullptr) return kBadParameter;
  ModuleVersionInfo info;
  WideText version;
  info.Load(ToDevicePath(*path).c_str());
  if (!info.ProductVersion(&version) && !info.FileVersion(&version)) return kBadParameter;
  processor.SendReply(Reply("PIF").Add(kName, name).Add("PVR", NarrowText(version)));
  return kDone;
}

}  // namespace

std::int32_t GtPif(CommandProcessor& processor, const FieldMap& fields) {
  const auto* name = fields.Find(kName);
  if (name == nullptr) return kBadParameter;
  if (*name == "OS") return AnswerOperatingSystem(processor, fields);
  for (const Component& component : kComponents) {
    if (component.name == *name) return AnswerComponent(processor, fields, component);
  }
  return AnswerFile(processor, *name, fields);
}

}  // namespace qxcm
