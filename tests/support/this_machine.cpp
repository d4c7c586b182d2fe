#include "support/this_machine.h"

namespace qxtest {

void MakeLinks(const std::vector<Link>& links) {
  for (const Link& link : links) std::filesystem::create_symlink(link.target, link.place);
}

std::vector<std::string> NamesOf(const std::filesystem::path& path) { return {path.string()}; }

}  // namespace qxtest
