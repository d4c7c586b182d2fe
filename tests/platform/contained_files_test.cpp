// No path, however spelled, leads out of the root.
#include "contained_files.h"

#include <fstream>

namespace platform_test {
namespace {

TEST_F(ContainedFiles, EverySpellingWithEveryCallLeavesWhatIsOutsideAlone) {
  const Canary canary(root_);
  MakeFile(TEXT("own"), "own");
  const auto before = canary.Look();
  const auto paths = qxtest::PathSpellings(canary);
  ASSERT_GE(paths.size(), 300u);
  RecordProperty("paths", static_cast<int>(paths.size()));
  for (const WideString& path : paths) {
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

}  // namespace
}  // namespace platform_test
