// Runs every kept input through its fuzz target. A broken promise aborts the test; the last name printed is its input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "targets.h"

namespace {

const std::filesystem::path kFolder = QX_FUZZ_FOLDER;

std::vector<std::filesystem::path> Inputs(const std::string& target) {
  std::vector<std::filesystem::path> inputs;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder / "seeds" / target)) {
    inputs.push_back(entry.path());
  }
  std::sort(inputs.begin(), inputs.end());
  return inputs;
}

std::vector<std::uint8_t> Read(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class FuzzReplay : public testing::TestWithParam<fuzz::Target> {};

TEST_P(FuzzReplay, EveryKeptInputKeepsThePromises) {
  const std::vector<std::filesystem::path> inputs = Inputs(GetParam().name);
  ASSERT_GE(inputs.size(), 20u);
  for (const std::filesystem::path& input : inputs) {
    std::cout << input.filename().string() << std::endl;
    const std::vector<std::uint8_t> bytes = Read(input);
    ASSERT_FALSE(bytes.empty());
    GetParam().run(bytes.data(), bytes.size());
  }
}

TEST_P(FuzzReplay, NoInputAtAllKeepsThePromises) {
  const std::uint8_t nothing = 0;
  GetParam().run(&nothing, 0);
}

std::string NameOf(const testing::TestParamInfo<fuzz::Target>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay, testing::ValuesIn(fuzz::kTargets), NameOf);

TEST(FuzzTargets, EverySourceAndEveryFolderOfInputsIsInTheTable) {
  std::set<std::string> table, found;
  for (const fuzz::Target& target : fuzz::kTargets) table.insert(target.name);
  const std::string ending = "_fuzz";
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    const std::string stem = entry.path().stem().string();
    if (entry.path().extension() != ".cpp" || stem.size() <= ending.size()) continue;
    const std::size_t length = stem.size() - ending.size();
    if (stem.substr(length) == ending) found.insert(stem.substr(0, length));
  }
  EXPECT_EQ(found, table);
  found.clear();
  for (const auto& entry : std::filesystem::directory_iterator(kFolder / "seeds"))
    found.insert(entry.path().filename());
  EXPECT_EQ(found, table);
}

}  // namespace
