// Which files are open in this process: a folder on the way to one of them stays where it is.
//
// Windows keeps such folders in place itself; Wine lets them go. How files are shared is the system's business.
#ifndef QXHOST_WINDOWS_FILES_OPEN_PATHS_H
#define QXHOST_WINDOWS_FILES_OPEN_PATHS_H

#include "common/text/utf.h"

namespace host {

/// One open file, by its path on this machine. Any thread.
class OpenPath {
 public:
  explicit OpenPath(WideString path);
  OpenPath(const OpenPath&) = delete;
  OpenPath& operator=(const OpenPath&) = delete;
  ~OpenPath();
  const WideString& path() const { return path_; }

 private:
  const WideString path_;
};

/// Whether files are open below the folder.
bool HoldsOpenFiles(const WideString& folder);

}  // namespace host

#endif
