// No pipe and no device, and nothing that happens on this machine meanwhile, leads out of the root.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "contained_files.h"

namespace platform_test {
namespace {

TEST_F(ContainedFiles, PipesSocketsAndDevicesDoNotExist) {
  const std::string pipe = folder_.host_path() + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(Error(Attributes(TEXT("pipe"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Open(TEXT("pipe"))), DWORD{ERROR_FILE_NOT_FOUND});  // and does not wait for a writer
  EXPECT_EQ(Error(Open(TEXT("pipe"), GENERIC_READ)), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Copy(TEXT("pipe"), TEXT("b"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Delete(TEXT("pipe"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_TRUE(SearchNames(Path(TEXT("*"))).empty());
  EXPECT_TRUE(fs::exists(pipe));
}

TEST_F(ContainedFiles, AFolderThatBecomesALinkMeanwhileLeadsNowhere) {
  const Canary canary(root_);
  const std::string swapped = folder_.host_path() + "/swapped", other = folder_.host_path() + "/other";
  fs::create_directory(swapped);
  fs::create_directory(swapped + "/empty");
  fs::create_directory_symlink(canary.folder(), other);
  const auto before = canary.Look();
  std::atomic<bool> stop{false};
  std::thread swapper([&] {
    while (!stop) renameat2(AT_FDCWD, swapped.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
  });
  const std::string name = Canary::kSecretFile;
  const WideString secret = Path(TEXT("swapped\\") + WideString(name.begin(), name.end()));
  for (int i = 0; i < 3000; ++i) {
    EXPECT_FALSE(Tells(TakeContent(OpenPath(secret, GENERIC_READ, OPEN_EXISTING))));
    CloseHandle(OpenPath(Path(TEXT("swapped\\made")), GENERIC_WRITE, CREATE_NEW));
    Delete(TEXT("swapped\\made"));
    DeleteFileW(secret.c_str());
    Remove(TEXT("swapped\\empty"));
    Move(TEXT("swapped\\inner"), TEXT("taken"));
    if (i % 50 == 0) {
      EXPECT_FALSE(Tells(Listed(Path(TEXT("swapped\\*")))));
    }
  }
  stop = true;
  swapper.join();
  EXPECT_EQ(canary.Look(), before);
}

}  // namespace
}  // namespace platform_test
