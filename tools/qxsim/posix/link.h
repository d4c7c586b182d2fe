// The symbolic link under which a controller finds its end of a line.
#ifndef QXSIM_POSIX_LINK_H
#define QXSIM_POSIX_LINK_H

#include <filesystem>
#include <string>

namespace qxsim {

/// Made in one step in place of an older symbolic link, removed at the end unless it leads elsewhere by then.
class Link {
 public:
  /// Throws StartError when something other than a symbolic link is in the way, or it cannot be made.
  Link(const std::string& path, std::string target);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  /// Absolute; the link itself is not followed.
  const std::filesystem::path& path() const { return path_; }

 private:
  const std::filesystem::path path_;
  const std::string target_;
};

}  // namespace qxsim

#endif
