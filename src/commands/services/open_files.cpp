// OP_FIL, CL_FIL, RD_FIL, WR_FIL, SK_FIL: files that stay open between commands.
//   C<OP_FIL,PTH=/a.txt>            ->  R<FIL,STS=SCS,HAN=1>, ACK
//   C<WR_FIL,HAN=1,VAL=Hello>       ->  R<FIL,STS=SCS>, ACK                    (writes "Hello" CR LF)
//   C<SK_FIL,HAN=1,POS=0>           ->  R<FIL,STS=SCS>, ACK
//   C<RD_FIL,HAN=1,MOD=BIN,RBT=5>   ->  R<FIL,STS=SCS,VAL=48656C6C6F>, ACK
//   C<CL_FIL,HAN=1>                 ->  R<FIL,STS=SCS>, ACK
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "commands/measure/valuetext/hex_text.h"
#include "commands/measure/valuetext/number_text.h"
#include "commands/services/file_status.h"
#include "commands/services/line_reader.h"
#include "commands/services/open_file_table.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kPath = "PTH";
constexpr std::string_view kHandle = "HAN";
constexpr std::string_view kMode = "MOD";
constexpr std::string_view kBinary = "BIN";
constexpr std::string_view kByteCount = "RBT";
constexpr std::string_view kValue = "VAL";
constexpr std::string_view kPosition = "POS";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::int32_t kMostBytes = 504;  // a read in binary mode
constexpr char kValueTail[] = ",VAL=";
constexpr char kHandleTail[] = ",HAN=";

bool IsBinary(const FieldMap& fields) {
  const auto* mode = fields.Find(kMode);
  return mode != nullptr && *mode == kBinary;
}

DWORD OpenExisting(LPCWSTR path, Handle* file) {
  DWORD attributes = 0;
  const DWORD code = ErrorOf([&] { attributes = GetFileAttributesW(path); });
  if (attributes == INVALID_FILE_ATTRIBUTES) return code;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return ERROR_INVALID_NAME;
  return ErrorOf([&] {
    *file = Handle(
        CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  });
}

DWORD ReadBytes(HANDLE file, DWORD count, std::string* hex) {
  std::uint8_t bytes[kMostBytes];
  DWORD read = 0;
  BOOL done = FALSE;
  const DWORD code = ErrorOf([&] { done = ReadFile(file, bytes, count, &read, nullptr); });
  if (!done) return code;
  if (read == 0) return ERROR_HANDLE_EOF;
  BytesToHex(bytes, read, hex);
  return code;
}

// A short write is not noticed: the code is all that counts (kept).
DWORD Write(HANDLE file, const void* bytes, std::size_t count) {
  DWORD written = 0;
  return ErrorOf([&] { WriteFile(file, bytes, static_cast<DWORD>(count), &written, nullptr); });
}

/// What WR_FIL shall write; nothing for a text that is no hexadecimal.
std::optional<std::string> BytesToWrite(std::string_view value, bool binary) {
  if (!binary) return std::string(value).append(kLineEnd);
  std::vector<std::uint8_t> bytes;
  if (!HexToBytes(value, &bytes)) return std::nullopt;
  return std::string(bytes.begin(), bytes.end());
}

/// The bytes that RD_FIL asks for in binary mode; nothing when there is no such number or it is not allowed.
std::optional<DWORD> ByteCount(const FieldMap& fields) {
  const auto* text = fields.Find(kByteCount);
  const std::int32_t count = text == nullptr ? 0 : ParseLeadingInt(*text);
  if (count < 1 || count > kMostBytes) return std::nullopt;
  return static_cast<DWORD>(count);
}

}  // namespace

std::int32_t OpFil(CommandProcessor& processor, const FieldMap& fields) {
  OpenFileTable& table = processor.service().open_files();
  Guard guard(table.lock());
  DWORD code = ERROR_TOO_MANY_OPEN_FILES;
  std::string tail;
  if (!table.full()) {
    const auto* path = fields.Find(kPath);
    if (path == nullptr) return kBadParameter;
    Handle file;
    code = OpenExisting(ToDevicePath(*path).c_str(), &file);
    if (file) tail = kHandleTail + std::to_string(table.Add(std::move(file)));
  }
  FileStatusReply(processor, code, tail);
  return kDone;
}

std::int32_t ClFil(CommandProcessor& processor, const FieldMap& fields) {
  OpenFileTable& table = processor.service().open_files();
  Guard guard(table.lock());
  const auto* number = fields.Find(kHandle);
  if (number == nullptr) return kBadParameter;
  FileStatusReply(processor, table.Close(ParseLeadingInt(*number)));
  return kDone;
}

std::int32_t RdFil(CommandProcessor& processor, const FieldMap& fields) {
  OpenFileTable& table = processor.service().open_files();
  Guard guard(table.lock());
  const bool binary = IsBinary(fields);
  const std::optional<DWORD> count = ByteCount(fields);
  if (binary && !count) return kBadParameter;
  const auto* number = fields.Find(kHandle);
  if (number == nullptr) return kBadParameter;

  DWORD code = ERROR_INVALID_HANDLE;
  std::string value;
  if (const HANDLE file = table.Find(ParseLeadingInt(*number)); file != nullptr) {
    code = binary ? ReadBytes(file, *count, &value) : ReadLine(file, &value);
  }
  FileStatusReply(processor, code, code == ERROR_SUCCESS ? kValueTail + value : std::string());
  return kDone;
}

std::int32_t WrFil(CommandProcessor& processor, const FieldMap& fields) {
  OpenFileTable& table = processor.service().open_files();
  Guard guard(table.lock());
  const auto* number = fields.Find(kHandle);
  const auto* value = fields.Find(kValue);
  if (number == nullptr || value == nullptr) return kBadParameter;

  DWORD code = ERROR_INVALID_HANDLE;
  if (const HANDLE file = table.Find(ParseLeadingInt(*number)); file != nullptr) {
    const std::optional<std::string> bytes = BytesToWrite(*value, IsBinary(fields));
    if (!bytes) return kBadParameter;
    code = Write(file, bytes->data(), bytes->size());
  }
  FileStatusReply(processor, code);
  return kDone;
}

std::int32_t SkFil(CommandProcessor& processor, const FieldMap& fields) {
  OpenFileTable& table = processor.service().open_files();
  Guard guard(table.lock());
  const auto* number = fields.Find(kHandle);
  const auto* position = fields.Find(kPosition);
  if (number == nullptr || position == nullptr) return kBadParameter;

  DWORD code = ERROR_INVALID_HANDLE;
  if (const HANDLE file = table.Find(ParseLeadingInt(*number)); file != nullptr) {
    const bool relative = !position->empty() && (position->front() == '-' || position->front() == '+');
    code = ErrorOf(
        [&] { SetFilePointer(file, ParseLeadingInt(*position), nullptr, relative ? FILE_CURRENT : FILE_BEGIN); });
  }
  FileStatusReply(processor, code);
  return kDone;
}

}  // namespace qxcm
