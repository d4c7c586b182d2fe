#include "qxsim/posix/link.h"

#include <unistd.h>

#include "qxsim/start_error.h"

namespace qxsim {
namespace {

namespace fs = std::filesystem;

void CheckPlace(const fs::path& path) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(path, error);
  if (fs::exists(status) && !fs::is_symlink(status)) {
    throw StartError("link: " + path.string() + ": exists and is not a symbolic link");
  }
}

}  // namespace

Link::Link(const std::string& path, std::string target)
    : path_(fs::absolute(path).lexically_normal()), target_(std::move(target)) {
  CheckPlace(path_);
  const fs::path fresh = path_.string() + "." + std::to_string(getpid());
  std::error_code error;
  fs::remove(fresh, error);
  fs::create_symlink(target_, fresh, error);
  if (!error) fs::rename(fresh, path_, error);
  if (!error) return;
  std::error_code ignored;
  fs::remove(fresh, ignored);
  throw StartError("link: " + path_.string() + ": " + error.message());
}

Link::~Link() {
  std::error_code error;
  if (fs::read_symlink(path_, error) == target_) fs::remove(path_, error);
}

}  // namespace qxsim
