// GET and PATCH /files: attributes and last-write times of the instrument's files.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/simulator_test.h"

namespace qxtest {
namespace {

class FilesTest : public SimulatorTest {
 protected:
  FilesTest() {
    std::filesystem::create_directory(files() / "Temp");
    std::ofstream(files() / "Temp" / "a.txt") << "text";
  }

  std::filesystem::path files() const { return simulator_->home().files(); }
  Json File(const std::string& query_path) const { return Ask("GET", "/files?path=" + query_path); }
  Json Change(Json members) const {
    members["path"] = "\\Temp\\a.txt";
    return Ask("PATCH", "/files", members);
  }
};

TEST_F(FilesTest, AFileIsShownWithItsAttributesAndTime) {
  const Json file = File("%5CTemp%5Ca.txt");
  EXPECT_EQ(file["path"], "\\Temp\\a.txt");
  EXPECT_EQ(file["folder"], false);
  EXPECT_EQ(file["archive"], true);
  for (const char* name : {"readonly", "hidden", "system"}) EXPECT_EQ(file[name], false) << name;
  EXPECT_EQ(file["written"].get<std::string>().size(), std::string("2024-01-31T09:30:05").size());
}

TEST_F(FilesTest, AFolderIsShownToo) {
  const Json folder = File("/temp");
  EXPECT_EQ(folder["folder"], true);
  EXPECT_EQ(folder["archive"], false);
}

TEST_F(FilesTest, ChangesAreAnsweredAndStay) {
  const Json changed = Change({{"readonly", true}, {"hidden", true}, {"system", true}, {"archive", false}});
  EXPECT_EQ(changed, File("%5CTemp%5Ca.txt"));
  for (const char* name : {"readonly", "hidden", "system"}) EXPECT_EQ(changed[name], true) << name;
  EXPECT_EQ(changed["archive"], false);
}

TEST_F(FilesTest, WhatIsNotNamedStaysAsItIs) {
  Change({{"hidden", true}});
  const Json changed = Change({{"archive", false}});
  EXPECT_EQ(changed["hidden"], true);
  EXPECT_EQ(changed["archive"], false);
  EXPECT_EQ(changed["readonly"], false);
}

TEST_F(FilesTest, ReadOnlyIsWhatTheOwnerCannotWrite) {
  Change({{"readonly", true}});
  struct stat facts {};
  ASSERT_EQ(stat((files() / "Temp" / "a.txt").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & S_IWUSR, 0u);
}

TEST_F(FilesTest, TheTimeOfTheLastWriteIsSetInLocalTime) {
  Ask("PATCH", "/state", {{"clock", {{"local", "2024-01-01T00:00:00"}, {"zone", "W. Europe Standard Time"}}}});
  EXPECT_EQ(Change({{"written", "2024-01-31T09:30:05"}})["written"], "2024-01-31T09:30:05");
  struct stat facts {};
  ASSERT_EQ(stat((files() / "Temp" / "a.txt").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mtime, 1706689805);
}

TEST_F(FilesTest, UnknownPathsAreNotFound) {
  for (const char* path :
       {"/none", "/none/a", "/Temp/..", "/Temp/../Temp/a.txt", "//Temp", "/Temp/a.txt/", "/Temp/*"}) {
    EXPECT_EQ(Call("GET", std::string("/files?path=") + path).status, 404) << path;
    EXPECT_EQ(Call("PATCH", "/files", {{"path", path}, {"hidden", true}}).status, 404) << path;
  }
  EXPECT_EQ(Call("GET", "/files?path=/Temp%00x").status, 404);
}

TEST_F(FilesTest, WrongRequestsAreRefusedAndChangeNothing) {
  const Json before = File("/Temp/a.txt");
  const Json wrong[] = {{{"hidden", 1}},
                        {{"hidden", nullptr}},
                        {{"hidden", true}, {"size", 5}},
                        {{"hidden", true}, {"archive", "no"}},
                        {{"hidden", true}, {"written", 5}},
                        {{"hidden", true}, {"written", "2024-01-31 09:30:05"}},
                        {{"hidden", true}, {"written", "2024-02-30T09:30:05"}},
                        {{"hidden", true}, {"written", "2024-01-31T24:00:00"}},
                        {{"hidden", true}, {"written", "2024-01-31T09:30:05 "}},
                        {{"hidden", true}, {"written", "1979-12-31T23:59:59"}},
                        {{"hidden", true}, {"written", "2108-01-01T00:00:00"}},
                        {{"hidden", true}, {"written", ""}}};
  for (Json body : wrong) {
    body["path"] = "/Temp/a.txt";
    EXPECT_EQ(Call("PATCH", "/files", body).status, 400) << body;
  }
  EXPECT_EQ(File("/Temp/a.txt"), before);
}

TEST_F(FilesTest, APathIsNeeded) {
  EXPECT_EQ(Call("GET", "/files").status, 400);
  EXPECT_EQ(Call("GET", "/files?path=").status, 400);
  EXPECT_EQ(Call("PATCH", "/files", {{"hidden", true}}).status, 400);
  EXPECT_EQ(Call("PATCH", "/files", {{"path", ""}}).status, 400);
  EXPECT_EQ(Call("PATCH", "/files", {{"path", 5}}).status, 400);
  EXPECT_EQ(Call("POST", "/files", {{"path", "/Temp"}}).status, 405);
}

TEST_F(FilesTest, AttributesAreThereAgainAfterARestart) {
  options_.ephemeral = false;
  options_.home = folder_ / "home";
  simulator_.reset();
  Start();
  std::ofstream(files() / "a.txt") << "text";
  Ask("PATCH", "/files", {{"path", "\\a.txt"}, {"hidden", true}, {"archive", false}});
  simulator_.reset();
  Start();
  EXPECT_EQ(File("/a.txt")["hidden"], true);
  EXPECT_EQ(File("/a.txt")["archive"], false);
}

}  // namespace
}  // namespace qxtest
