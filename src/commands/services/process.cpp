// EX_PRS: starts a program on the controller.
//   C<EX_PRS,PTH=\\Windows\\tool.exe,PRM=-x>  ->  ACK
// The last program started is kept for the local application. "/" in the path stays as it is.
#include <algorithm>
#include <cstdint>
#include <string_view>

#include "QXCommMgr.h"
#include "platform/handle.h"
#include "platform/text.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr std::string_view kProgram = "PTH";
constexpr std::string_view kCommandLine = "PRM";

bool StartProgram(const WideText& program, WideText command_line) {
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(program.c_str(), command_line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr,
                      &process)) {
    return false;
  }
  const Handle thread_handle(process.hThread);
  const Handle process_handle(process.hProcess);
  return true;
}

/// Copies a text into a field of zeros; one that is too long is cut before the field's last zero.
template <class Unit, std::size_t kSize>
void CopyText(const WideText& text, Unit (&field)[kSize]) {
  std::copy_n(text.begin(), std::min(text.size(), kSize - 1), field);
}

}  // namespace

std::int32_t ExPrs(CommandProcessor& processor, const FieldMap& fields) {
  const auto* path = fields.Find(kProgram);
  if (path == nullptr) return kBadParameter;
  const auto* parameters = fields.Find(kCommandLine);
  const WideText program = WidenText(*path);
  const WideText command_line = parameters == nullptr ? WideText() : WidenText(*parameters);
  if (!StartProgram(program, command_line)) return kFailed;

  QCM_EXECUTED_PROCESS_INFO record = {};
  CopyText(command_line, record.command_line);
  CopyText(program, record.program);
  processor.service().StoreRequest(record);
  processor.PostNotification(QCM_NOTIFY_PROCESS_STARTED, 0);
  return kDone;
}

}  // namespace qxcm
