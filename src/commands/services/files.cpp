// MK_FDR, RM_FIL, RM_FDR, CR_FIL, CP_FIL, MV_FIL: files and folders by path, one platform operation each.
//   C<MK_FDR,PTH=/Jobs>               ->  R<FIL,STS=SCS>, ACK
//   C<CP_FIL,SPT=/a.txt,DPT=/b.txt>   ->  R<FIL,STS=ER_FAE>, ACK      (there is a b.txt)
#include <cstdint>
#include <optional>
#include <string_view>

#include "commands/services/file_status.h"
#include "platform/handle.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kPath = "PTH";
constexpr std::string_view kSource = "SPT";
constexpr std::string_view kDestination = "DPT";

using PathOperation = DWORD (*)(LPCWSTR path);

std::int32_t OnPath(CommandProcessor& processor, const FieldMap& fields, PathOperation operation) {
  const auto* path = fields.Find(kPath);
  if (path == nullptr) return kBadParameter;
  FileStatusReply(processor, operation(ToDevicePath(*path).c_str()));
  return kDone;
}

template <class Operation>
std::int32_t OnTwoPaths(CommandProcessor& processor, const FieldMap& fields, const Operation& operation) {
  const auto* source = fields.Find(kSource);
  const auto* destination = fields.Find(kDestination);
  if (source == nullptr || destination == nullptr) return kBadParameter;
  const WideText from = ToDevicePath(*source);
  const WideText to = ToDevicePath(*destination);
  FileStatusReply(processor, ErrorOf([&] { operation(from.c_str(), to.c_str()); }));
  return kDone;
}

/// Removes what the path names when it is of the wanted kind; a folder for a file or a file for a folder is 123.
template <class Operation>
DWORD Remove(LPCWSTR path, DWORD wanted, const Operation& operation) {
  DWORD attributes = 0;
  const DWORD code = ErrorOf([&] { attributes = GetFileAttributesW(path); });
  if (attributes == INVALID_FILE_ATTRIBUTES) return code;
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != wanted) return ERROR_INVALID_NAME;
  return ErrorOf([&] { operation(path); });
}

}  // namespace

std::int32_t MkFdr(CommandProcessor& processor, const FieldMap& fields) {
  return OnPath(processor, fields, [](LPCWSTR path) { return ErrorOf([&] { CreateDirectoryW(path, nullptr); }); });
}

std::int32_t RmFil(CommandProcessor& processor, const FieldMap& fields) {
  return OnPath(processor, fields, [](LPCWSTR path) { return Remove(path, 0, DeleteFileW); });
}

std::int32_t RmFdr(CommandProcessor& processor, const FieldMap& fields) {
  return OnPath(processor, fields,
                [](LPCWSTR path) { return Remove(path, FILE_ATTRIBUTE_DIRECTORY, RemoveDirectoryW); });
}

std::int32_t CrFil(CommandProcessor& processor, const FieldMap& fields) {
  return OnPath(processor, fields, [](LPCWSTR path) {
    Handle created;  // closed at once: the file stays empty
    return ErrorOf([&] {
      created = Handle(
          CreateFileW(path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    });
  });
}

std::int32_t CpFil(CommandProcessor& processor, const FieldMap& fields) {
  return OnTwoPaths(processor, fields, [](LPCWSTR from, LPCWSTR to) { CopyFileW(from, to, TRUE); });
}

std::int32_t MvFil(CommandProcessor& processor, const FieldMap& fields) {
  return OnTwoPaths(processor, fields, [](LPCWSTR from, LPCWSTR to) { MoveFileW(from, to); });
}

}  // namespace qxcm
