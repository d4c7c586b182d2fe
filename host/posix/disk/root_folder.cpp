#include "posix/disk/root_folder.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

namespace host {

std::shared_ptr<const RootFolder> OpenRootFolder(const std::string& folder) {
  auto root = std::make_shared<RootFolder>();
  root->descriptor = FileDescriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (root->descriptor.get() < 0) throw std::system_error(errno, std::generic_category(), folder);
  return root;
}

}  // namespace host
