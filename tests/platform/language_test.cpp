// The system's language.
#include <gtest/gtest.h>
#include <windows.h>

namespace platform_test {
namespace {

constexpr LANGID kPrimaryLanguage = 0x3FF;

TEST(SystemLanguage, IsALanguageAndStaysTheSame) {
  const LANGID language = GetSystemDefaultLangID();
  EXPECT_NE(language & kPrimaryLanguage, 0);
  EXPECT_EQ(GetSystemDefaultLangID(), language);
}

TEST(SystemLanguage, IsToldWithoutAnError) {
  SetLastError(1234);
  GetSystemDefaultLangID();
  EXPECT_EQ(GetLastError(), 1234u);
}

}  // namespace
}  // namespace platform_test
