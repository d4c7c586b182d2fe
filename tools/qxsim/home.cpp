#include "qxsim/home.h"

#include "qxsim/start_error.h"

namespace qxsim {
namespace {

namespace fs = std::filesystem;

fs::path Choose(const Options& options) {
  if (options.ephemeral) return MakeTemporaryFolder();
  const fs::path home = options.home.empty() ? UserDataFolder() / "qxsim" : fs::path(options.home);
  return fs::absolute(home).lexically_normal();
}

}  // namespace

Home::Home(const Options& options) : path_(Choose(options)), ephemeral_(options.ephemeral) {
  try {
    Prepare();
    lock_ = FolderLock::Take(path_ / "lock");
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

void Home::Leave() {
  lock_.reset();
  std::error_code ignored;
  if (ephemeral_) fs::remove_all(path_, ignored);
}

}  // namespace qxsim
