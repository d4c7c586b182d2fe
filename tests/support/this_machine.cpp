#include "support/this_machine.h"

#include <fstream>
#include <stdexcept>

namespace qxtest {

void MakeLinks(const std::vector<Link>& links) {
  for (const Link& link : links) std::filesystem::create_symlink(link.target, link.place);
}

void MakeManyFiles(const std::filesystem::path& folder, int count) {
  for (int i = 0; i < count; ++i) {
    std::ofstream file(folder / ("file " + std::to_string(i) + ".txt"));
    if (!file) throw std::runtime_error("no file in " + folder.string());
  }
}

std::vector<std::string> NamesOf(const std::filesystem::path& path) { return {path.string()}; }

}  // namespace qxtest
