// RD_REG, WR_REG, DL_REG: values and keys of the platform's registry.
//   C<WR_REG,KEY=HKLM/Software/X,NAM=Level,TYP=INT,VAL=3>  ->  ACK
//   C<RD_REG,KEY=HKLM/Software/X,NAM=Level>                ->  R<REG,KEY=HKLM/Software/X,NAM=Level,TYP=INT,VAL=3>, ACK
//   C<DL_REG,KEY=HKLM/Software/X>                          ->  ACK
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "QXCommMgr.h"
#include "commands/measure/valuetext/hex_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/registry_key.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kKey = "KEY";
constexpr std::string_view kName = "NAM";
constexpr std::string_view kType = "TYP";
constexpr std::string_view kValue = "VAL";
constexpr std::string_view kInteger = "INT";
constexpr std::string_view kString = "STR";
constexpr std::string_view kBinary = "BIN";
constexpr std::size_t kLongestValue = 1024;  // characters in a reply

struct Root {
  LPCWSTR name;
  HKEY key;
};

/// "HKLM/Software/X" as a key; nothing without a known root and a path behind it.
std::optional<RegistryKey> ParseKey(std::string_view text) {
  const Root roots[] = {{TEXT("HKCU"), HKEY_CURRENT_USER},
                        {TEXT("HKLM"), HKEY_LOCAL_MACHINE},
                        {TEXT("HKCR"), HKEY_CLASSES_ROOT},
                        {TEXT("HKU"), HKEY_USERS}};
  const WideText wide = WidenText(text);
  const std::size_t slash = wide.find(WCHAR('/'));
  if (slash == WideText::npos || slash + 1 == wide.size()) return std::nullopt;
  const WideText name = wide.substr(0, slash);
  const auto* root = std::find_if(std::begin(roots), std::end(roots), [&](const Root& r) { return name == r.name; });
  if (root == std::end(roots)) return std::nullopt;
  WideText path = wide.substr(slash + 1);
  std::replace(path.begin(), path.end(), WCHAR('/'), WCHAR('\\'));
  return RegistryKey(root->key, std::move(path));
}

std::int32_t Result(bool done) { return done ? kDone : kFailed; }

// ---- Values as text

using Bytes = std::vector<std::uint8_t>;

/// As many as there are, `count` at most.
void CopyBytes(const Bytes& bytes, std::size_t count, void* to) {
  std::copy_n(bytes.begin(), std::min(bytes.size(), count), static_cast<std::uint8_t*>(to));
}

std::optional<std::string> StringText(const Bytes& bytes) {
  WideText wide(bytes.size() / sizeof(WCHAR), WCHAR());
  CopyBytes(bytes, wide.size() * sizeof(WCHAR), wide.data());
  std::string narrow = NarrowText(wide);
  if (narrow.size() > kLongestValue) return std::nullopt;
  return narrow;
}

std::optional<std::string> BinaryText(const Bytes& bytes) {
  if (bytes.size() * 2 > kLongestValue) return std::nullopt;
  std::string hex;
  BytesToHex(bytes.data(), bytes.size(), &hex);
  return hex;
}

std::optional<std::string> IntegerText(const Bytes& bytes) {
  std::int32_t value = 0;
  CopyBytes(bytes, sizeof value, &value);
  return std::to_string(value);
}

struct TypeRow {
  DWORD type;
  std::string_view name;
  std::optional<std::string> (*text)(const Bytes& bytes);
};
constexpr TypeRow kTypes[] = {
    {REG_SZ, kString, StringText}, {REG_BINARY, kBinary, BinaryText}, {REG_DWORD, kInteger, IntegerText}};

const TypeRow* FindType(DWORD type) {
  const auto* row =
      std::find_if(std::begin(kTypes), std::end(kTypes), [type](const TypeRow& r) { return r.type == type; });
  return row == std::end(kTypes) ? nullptr : row;
}

// ---- Values from text

bool WriteInteger(const RegistryKey& key, const WideText& name, std::string_view value) {
  const std::int32_t number = ParseLeadingInt(value);
  return key.WriteValue(name, REG_DWORD, &number, sizeof number);
}

bool WriteString(const RegistryKey& key, const WideText& name, std::string_view value) {
  const WideText text = WidenText(value);
  const std::size_t bytes = (text.size() + 1) * sizeof(WCHAR);  // with its terminating zero
  return key.WriteValue(name, REG_SZ, text.c_str(), static_cast<DWORD>(bytes));
}

bool WriteBinary(const RegistryKey& key, const WideText& name, const Bytes& bytes) {
  return key.WriteValue(name, REG_BINARY, bytes.data(), static_cast<DWORD>(bytes.size()));
}

std::int32_t WriteTyped(const RegistryKey& key, const WideText& name, std::string_view type, std::string_view value) {
  if (type == kInteger) return Result(WriteInteger(key, name, value));
  if (type == kString) return Result(WriteString(key, name, value));
  if (type != kBinary) return kFailed;
  Bytes bytes;
  if (!HexToBytes(value, &bytes)) return kBadParameter;
  return Result(WriteBinary(key, name, bytes));
}

}  // namespace

std::int32_t RdReg(CommandProcessor& processor, const FieldMap& fields) {
  const auto* key_text = fields.Find(kKey);
  const auto* name_text = fields.Find(kName);
  if (key_text == nullptr || name_text == nullptr) return kBadParameter;
  const std::optional<RegistryKey> key = ParseKey(*key_text);
  if (!key) return kBadParameter;

  const WideText name = WidenText(*name_text);
  DWORD type = 0;
  DWORD size = 0;
  if (!key->QueryValueInfo(name, &type, &size)) return kFailed;
  Bytes bytes(size);
  if (!key->ReadValue(name, type, bytes.data(), &size)) return kFailed;
  bytes.resize(size);
  const TypeRow* row = FindType(type);
  const std::optional<std::string> value = row == nullptr ? std::nullopt : row->text(bytes);
  if (!value) return kFailed;

  Reply reply("REG");
  reply.Add(kKey, *key_text).Add(kName, *name_text).Add(kType, row->name).Add(kValue, *value);  // not escaped (kept)
  processor.SendReply(reply);
  return kDone;
}

std::int32_t WrReg(CommandProcessor& processor, const FieldMap& fields) {
  const auto* key_text = fields.Find(kKey);
  const auto* name = fields.Find(kName);
  const auto* type = fields.Find(kType);
  const auto* value = fields.Find(kValue);
  if (key_text == nullptr || name == nullptr || type == nullptr || value == nullptr) return kBadParameter;
  const std::optional<RegistryKey> key = ParseKey(*key_text);
  if (!key) return kBadParameter;
  const std::int32_t result = WriteTyped(*key, WidenText(*name), *type, *value);
  if (result == kDone) processor.PostNotification(QCM_NOTIFY_REGISTRY_WRITTEN, 0);
  return result;
}

std::int32_t DlReg(CommandProcessor&, const FieldMap& fields) {
  const auto* key_text = fields.Find(kKey);
  if (key_text == nullptr) return kBadParameter;
  const std::optional<RegistryKey> key = ParseKey(*key_text);
  if (!key) return kBadParameter;
  const auto* name_text = fields.Find(kName);
  if (name_text == nullptr)
    return Result(!key->Exists() || key->Delete());  // a key that is not there counts as deleted
  const WideText name = WidenText(*name_text);
  DWORD type = 0;
  DWORD size = 0;
  return Result(key->QueryValueInfo(name, &type, &size) && key->DeleteValue(name));
}

}  // namespace qxcm
