// No path, however spelled, and nothing that happens on this machine meanwhile leads out of the root.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "common/text/utf.h"
#include "scratch_folder.h"
#include "support/path_spellings.h"

namespace platform_test {
namespace {

namespace fs = std::filesystem;
using qxtest::Canary;

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// Whether what was read or listed comes from the canary.
bool Tells(const std::string& seen) {
  return Holds(seen, Canary::kSecret) || Holds(seen, std::string("[") + Canary::kSecretFile + "]");
}

// What is behind a handle, closed afterwards.
std::string TakeContent(HANDLE file) {
  if (file == INVALID_HANDLE_VALUE) return {};
  DWORD read = 0;
  std::string text(4096, '\0');
  ReadFile(file, text.data(), 4096, &read, nullptr);
  CloseHandle(file);
  text.resize(read);
  return text;
}

HANDLE OpenPath(const WideString& path, DWORD access, DWORD disposition) {
  return CreateFileW(path.c_str(), access, 0, nullptr, disposition, 0, nullptr);
}

class ContainedFiles : public FileCalls {
 protected:
  ContainedFiles() : root_(fs::path(folder_.host_path()).parent_path()) {}

  static std::string Listed(const WideString& pattern) {
    std::string names;
    for (const WideString& name : SearchNames(pattern)) names += "[" + host::WideToUtf8(name) + "]";
    return names;
  }

  // Every call that takes a path; what could be read by it.
  std::string TryAll(const WideString& path) const {
    const WideString own = Path(TEXT("own")), copy = Path(TEXT("copy"));
    std::string seen = TakeContent(OpenPath(path, GENERIC_READ, OPEN_EXISTING));
    if (CopyFileW(path.c_str(), copy.c_str(), FALSE)) seen += TakeContent(OpenPath(copy, GENERIC_READ, OPEN_EXISTING));
    seen += Listed(path) + Listed(path + TEXT("\\*")) + Listed(path + TEXT("/*.*"));
    GetFileAttributesW(path.c_str());
    if (const HANDLE file = OpenPath(path, GENERIC_WRITE, OPEN_EXISTING); file != INVALID_HANDLE_VALUE) {
      WriteBytes(file, "changed");
      CloseHandle(file);
    }
    CopyFileW(own.c_str(), path.c_str(), FALSE);
    DeleteFileW(path.c_str());
    CloseHandle(OpenPath(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW));
    DeleteFileW(copy.c_str());
    if (MoveFileW(path.c_str(), copy.c_str())) seen += TakeContent(OpenPath(copy, GENERIC_READ, OPEN_EXISTING));
    DeleteFileW(path.c_str());
    CreateDirectoryW(path.c_str(), nullptr);
    RemoveDirectoryW(path.c_str());
    if (MoveFileW(own.c_str(), path.c_str())) MoveFileW(path.c_str(), own.c_str());
    return seen;
  }

  const fs::path root_;
};

TEST_F(ContainedFiles, EverySpellingWithEveryCallLeavesWhatIsOutsideAlone) {
  const Canary canary(root_);
  MakeFile(TEXT("own"), "own");
  const auto before = canary.Look();
  const auto paths = qxtest::PathSpellings(canary);
  ASSERT_GE(paths.size(), 300u);
  RecordProperty("paths", static_cast<int>(paths.size()));
  for (const std::u16string& path : paths) {
    const std::string seen = TryAll(path) + TryAll(Path(path));
    ASSERT_FALSE(Tells(seen)) << testing::PrintToString(path);
    ASSERT_EQ(canary.Look(), before) << testing::PrintToString(path);
  }
}

TEST_F(ContainedFiles, TheCanaryWouldBeMissed) {
  const Canary canary(root_);
  const auto before = canary.Look();
  std::ofstream(canary.folder() / Canary::kSecretFile, std::ios::app) << "!";
  EXPECT_NE(canary.Look(), before);
  std::ofstream(canary.folder().parent_path() / "new").close();
  EXPECT_EQ(canary.Look().size(), before.size() + 1);
}

TEST_F(ContainedFiles, LinksDoNotExist) {
  const Canary canary(root_);
  for (const WCHAR* path : {TEXT("\\link"), TEXT("\\file"), TEXT("\\dangling"), TEXT("\\loop"), TEXT("\\deep\\link")}) {
    EXPECT_EQ(Error(GetFileAttributesW(path)), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(Error(OpenPath(path, GENERIC_READ, OPEN_EXISTING)), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(Error(DeleteFileW(path) != FALSE), DWORD{ERROR_FILE_NOT_FOUND});
  }
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("\\link\\inner"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(SearchNames(TEXT("\\*")), (std::vector<WideString>{TEXT("deep"), TEXT("Scratch")}));
}

TEST_F(ContainedFiles, NothingIsMadeWhereALinkIs) {
  const Canary canary(root_);
  MakeFile(TEXT("a"));
  const WideString own = Path(TEXT("a"));
  EXPECT_EQ(Error(OpenPath(TEXT("\\dangling"), GENERIC_WRITE, CREATE_NEW)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(CreateDirectoryW(TEXT("\\link"), nullptr) != FALSE), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(MoveFileW(own.c_str(), TEXT("\\file")) != FALSE), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(CopyFileW(own.c_str(), TEXT("\\file"), FALSE) != FALSE), DWORD{ERROR_ACCESS_DENIED});
}

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
