// What tests do on this machine beside the instrument: symbolic links, many files, and the names that a place has.
#ifndef QXTEST_SUPPORT_THIS_MACHINE_H
#define QXTEST_SUPPORT_THIS_MACHINE_H

#include <filesystem>
#include <string>
#include <vector>

namespace qxtest {

struct Link {
  std::filesystem::path target;  ///< from the link's folder on, or whole; need not be there
  std::filesystem::path place;
};

/// Makes them in this order. Throws when one cannot be made.
void MakeLinks(const std::vector<Link>& links);

/// Makes so many empty files in the folder: "file 0.txt", "file 1.txt" ... Throws when it cannot.
void MakeManyFiles(const std::filesystem::path& folder, int count);

/// Every way to write the path (UTF-8).
std::vector<std::string> NamesOf(const std::filesystem::path& path);

}  // namespace qxtest

#endif
