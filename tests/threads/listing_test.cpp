// A folder with very many files, listed to a controller that does not read.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/files/file_root.h"
#include "support/memory_link.h"
#include "support/process.h"
#include "support/test_application.h"
#include "threads/open_service.h"

namespace qxtest {
namespace {

constexpr int kFiles = 10000;

/// A file system with one folder of many files.
class ManyFiles {
 public:
  ManyFiles() {
    std::filesystem::create_directory(std::filesystem::path(folder_.path()) / "Many");
    for (int i = 0; i < kFiles; ++i) std::ofstream(folder_.path() + "/Many/file-" + std::to_string(i));
    host::SetFileRoot(folder_.path());
  }
  ManyFiles(const ManyFiles&) = delete;
  ManyFiles& operator=(const ManyFiles&) = delete;
  ~ManyFiles() { host::ClearFileRoot(); }

 private:
  TemporaryFolder folder_;
};

TEST(Listing, OfManyFilesToAControllerThatDoesNotReadLetsTheServiceCloseInTime) {
  Watchdog watchdog;
  const ManyFiles files;
  World world;
  const OpenService service;
  world.controller().Send(CommandFrame("GT_FLS,PTH=/Many/*"));
  EXPECT_NE(world.controller().Receive(1), "");  // the list is under way
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(QCMCloseComm(service.handle()), QCM_OK);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));  // a write in hand takes five at most
}

TEST(Listing, OfManyFilesLosesNoneToASlowController) {
  Watchdog watchdog;
  const ManyFiles files;
  World world;
  const OpenService service;
  world.controller().Send(CommandFrame("GT_FLS,PTH=/Many/*"));
  const std::string all = world.controller().ReceiveAcks(1);
  std::size_t frames = 0;
  for (std::size_t at = all.find("R<FLS,CNT="); at != std::string::npos; at = all.find("R<FLS,CNT=", at + 1)) ++frames;
  EXPECT_EQ(frames, std::size_t{kFiles});
}

}  // namespace
}  // namespace qxtest
