// The folder that holds everything of one instrument, for one simulator at a time.
//
//   files/     the instrument's file system
//   state.json what else the instrument keeps: its registry
//   objects/   the named objects that processes of this instrument share
//   lock       held while a simulator uses the folder
#ifndef QXSIM_HOME_H
#define QXSIM_HOME_H

#include <filesystem>
#include <memory>

#include "qxsim/options.h"
#include "qxsim/system/folders.h"

namespace qxsim {

/// Made, locked, and for an ephemeral instrument removed again with all that is in it.
class Home {
 public:
  /// Throws StartError when the folder cannot be made or another simulator uses it.
  explicit Home(const Options& options);
  Home(const Home&) = delete;
  Home& operator=(const Home&) = delete;
  ~Home();

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path files() const { return path_ / "files"; }
  std::filesystem::path state() const { return path_ / "state.json"; }
  std::filesystem::path objects() const { return path_ / "objects"; }

 private:
  void Prepare();
  void Leave();

  std::filesystem::path path_;
  const bool ephemeral_;
  std::unique_ptr<FolderLock> lock_;
};

}  // namespace qxsim

#endif
