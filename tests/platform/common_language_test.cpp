// The virtual instrument's language and revision.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/system/identity.h"
#include "instrument/instrument_libraries.h"

namespace {

TEST(Identity, IsWhatTheCallsTell) {
  EXPECT_EQ(GetSystemDefaultLangID(), 1033);
  EXPECT_EQ(GetProductOSRevision(), 0x06000201u);
  host::SetSystemLanguage(1041);
  host::SetOsRevision(0xFFFEFDFC);
  EXPECT_EQ(GetSystemDefaultLangID(), 1041);
  EXPECT_EQ(GetProductOSRevision(), 0xFFFEFDFCu);
  host::SetSystemLanguage(host::kStandardLanguage);
  host::SetOsRevision(host::kStandardOsRevision);
}

}  // namespace
