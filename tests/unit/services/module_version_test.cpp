// Versions of program and library files.
#include "commands/services/module_version.h"

#include <gtest/gtest.h>

#include <string>

#include "support/pe_file.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using qxcm::ModuleVersionInfo;

class ModuleVersions : public testing::Test {
 protected:
  bool Load(const std::vector<VersionTable>& tables, const PeLayout& layout = {}) {
    const FileBytes file = PeFile(VersionResource(tables), layout);
    world_.MakeFile("/module.dll", std::string(file.begin(), file.end()));
    return info_.Load(u"\\module.dll");
  }
  /// A value, or "none".
  std::u16string File() const {
    qxcm::WideText result = u"before";
    const bool found = info_.FileVersion(&result);
    EXPECT_EQ(found, !result.empty());
    return found ? result : u"none";
  }
  std::u16string Product() const {
    qxcm::WideText result = u"before";
    return info_.ProductVersion(&result) ? result : u"none";
  }

  InstrumentWorld world_;
  ModuleVersionInfo info_;
};

TEST_F(ModuleVersions, AreTheTextsOfTheirResource) {
  EXPECT_TRUE(Load({{0x0409, 1200, {{u"FileVersion", u"1.2.0.15"}, {u"ProductVersion", u"3.4"}}}}));
  EXPECT_EQ(File(), u"1.2.0.15");
  EXPECT_EQ(Product(), u"3.4");
}

TEST_F(ModuleVersions, HavePointsForCommasAndNoBlanks) {
  Load({{0x0409, 1200, {{u"FileVersion", u"1, 2, 0, 15"}, {u"ProductVersion", u" 1 ,2 "}}}});
  EXPECT_EQ(File(), u"1.2.0.15");
  EXPECT_EQ(Product(), u"1.2");
}

TEST_F(ModuleVersions, AreReadFrom32BitFilesToo) {
  PeLayout layout;
  layout.bits = 32;
  EXPECT_TRUE(Load({{0x0411, 932, {{u"FileVersion", u"7"}}}}, layout));
  EXPECT_EQ(File(), u"7");
}

TEST_F(ModuleVersions, AreThoseOfTheFirstTranslationAlone) {
  Load({{0x0409, 1200, {{u"ProductVersion", u"1"}}},
        {0x0411, 1200, {{u"FileVersion", u"2"}, {u"ProductVersion", u"2"}}}});
  EXPECT_EQ(File(), u"none");
  EXPECT_EQ(Product(), u"1");
}

TEST_F(ModuleVersions, AreMissingWithoutATranslation) {
  EXPECT_TRUE(Load({}));
  EXPECT_EQ(File(), u"none");
}

TEST_F(ModuleVersions, AreMissingWithoutAResource) {
  PeLayout layout;
  layout.has_resources = false;
  EXPECT_FALSE(Load({}, layout));
  EXPECT_EQ(File(), u"none");
  EXPECT_EQ(Product(), u"none");
}

TEST_F(ModuleVersions, AreMissingForAMissingFileAFolderAndAnyOtherFile) {
  world_.MakeFolder("/folder");
  world_.MakeFile("/text", "no module");
  for (const char16_t* path : {u"\\none", u"\\folder", u"\\text", u""}) {
    EXPECT_FALSE(info_.Load(path));
    EXPECT_EQ(File(), u"none");
  }
}

TEST_F(ModuleVersions, GoWithTheNextLoad) {
  Load({{0x0409, 1200, {{u"FileVersion", u"1"}}}});
  EXPECT_FALSE(info_.Load(u"\\none"));
  EXPECT_EQ(File(), u"none");
}

TEST_F(ModuleVersions, AreMissingBeforeTheFirstLoad) { EXPECT_EQ(File(), u"none"); }

TEST_F(ModuleVersions, AnswerOtherNamesToo) {
  Load({{0x0409, 1200, {{u"CompanyName", u"A, B"}}}});
  qxcm::WideText result;
  EXPECT_TRUE(info_.Query(u"CompanyName", &result));
  EXPECT_EQ(result, u"A.B");
  EXPECT_FALSE(info_.Query(u"None", &result));
  EXPECT_EQ(result, u"");
}

}  // namespace
}  // namespace qxtest
