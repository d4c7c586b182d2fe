#include "qxsim/home.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "qxsim/start_error.h"

namespace qxsim {
namespace {

namespace fs = std::filesystem;

fs::path MakeTemporary() {
  std::error_code error;
  fs::path folder = fs::temp_directory_path(error);
  if (error) folder = "/tmp";
  std::string pattern = (folder / "qxsim-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw StartError("home: " + pattern + ": " + std::strerror(errno));
  return pattern;
}

fs::path StandardHome() {
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') return fs::path(data) / "qxsim";
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
    return fs::path(home) / ".local/share/qxsim";
  throw StartError("home: neither XDG_DATA_HOME nor HOME is set; say --home");
}

fs::path Choose(const Options& options) {
  if (options.ephemeral) return MakeTemporary();
  return fs::absolute(options.home.empty() ? StandardHome() : fs::path(options.home)).lexically_normal();
}

}  // namespace

Home::Home(const Options& options) : path_(Choose(options)), ephemeral_(options.ephemeral) {
  try {
    Prepare();
    Lock();
  } catch (...) {
    Leave();
    throw;
  }
}

Home::~Home() { Leave(); }

void Home::Prepare() {
  std::error_code error;
  fs::create_directories(files(), error);
  if (!error && !fs::is_directory(files(), error)) error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw StartError("home: " + path_.string() + ": " + error.message());
}

void Home::Lock() {
  const std::string file = (path_ / "lock").string();
  lock_ = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (lock_ < 0) throw StartError("home: " + file + ": " + std::strerror(errno));
  if (flock(lock_, LOCK_EX | LOCK_NB) == 0) return;
  throw StartError("home: " + path_.string() + ": in use by another qxsim");
}

void Home::Leave() {
  std::error_code ignored;
  if (ephemeral_) fs::remove_all(path_, ignored);
  if (lock_ >= 0) close(lock_);
}

}  // namespace qxsim
