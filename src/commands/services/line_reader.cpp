#include "commands/services/line_reader.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "commands/services/file_status.h"
#include "protocol/reply.h"

namespace qxcm {

namespace {

constexpr std::size_t kBlock = 1011;
constexpr std::size_t kLongestAnswer = 1008;
constexpr char kCtrlZ = 26;
constexpr std::string_view kLineEnds("\r\n\x1A");

/// How many bytes the end of the line takes that begins at `at`: a Ctrl-Z none, it is left for the next read.
std::size_t LengthOfEnd(std::string_view block, std::size_t at) {
  if (block[at] == kCtrlZ) return 0;
  const char other = block[at] == '\r' ? '\n' : '\r';
  return at + 1 < block.size() && block[at + 1] == other ? 2 : 1;
}

/// Moves the file's position back over what was read behind the line.
void GiveBack(HANDLE file, std::size_t bytes) {
  if (bytes > 0) SetFilePointer(file, -static_cast<LONG>(bytes), nullptr, FILE_CURRENT);
}

}  // namespace

DWORD ReadLine(HANDLE file, std::string* line) {
  char buffer[kBlock];
  DWORD bytes = 0;
  BOOL read = FALSE;
  const DWORD code = ErrorOf([&] { read = ReadFile(file, buffer, kBlock, &bytes, nullptr); });
  if (!read) return code;
  const std::string_view block(buffer, bytes);
  if (block.empty() || block.front() == kCtrlZ) return ERROR_HANDLE_EOF;

  const std::size_t end = block.find_first_of(kLineEnds);
  if (end != std::string_view::npos) GiveBack(file, block.size() - end - LengthOfEnd(block, end));

  std::string_view text = block.substr(0, end);
  text = text.substr(0, text.find('\0'));
  *line = Escaped(text);
  return line->size() > kLongestAnswer ? ERROR_BAD_FORMAT : code;
}

}  // namespace qxcm
