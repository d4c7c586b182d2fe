#include "posix/kernel/processes.h"

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace host {

// The second field of the stat line is the program's name in brackets and may hold anything; what follows the last
// bracket is the third field, the state.
std::optional<std::uint64_t> ProcessStart(std::uint32_t pid) {
  constexpr std::size_t kState = 0;
  constexpr std::size_t kThreads = 20 - 3;
  constexpr std::size_t kStart = 22 - 3;
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string line;
  std::getline(file, line, '\0');
  const std::size_t bracket = line.rfind(')');
  if (bracket == std::string::npos) return std::nullopt;
  std::istringstream rest(line.substr(bracket + 1));
  std::vector<std::string> fields;
  for (std::string field; fields.size() <= kStart && rest >> field;) fields.push_back(field);
  if (fields.size() <= kStart) return std::nullopt;
  // A main thread that has ended before the others is a zombie, too.
  const bool remains = fields[kState] == "X" || (fields[kState] == "Z" && std::stoul(fields[kThreads]) <= 1);
  if (remains) return std::nullopt;
  return std::stoull(fields[kStart]);
}

}  // namespace host
