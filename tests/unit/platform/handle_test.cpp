// Owned handles and wide text.
#include "platform/handle.h"

#include <gtest/gtest.h>

#include <utility>

#include "common/kernel/handles.h"
#include "platform/text.h"

namespace {

using qxcm::Handle;

Handle NewHandle() { return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)); }

TEST(Handle, IsEmptyForBothValuesThatMeanNone) {
  EXPECT_FALSE(Handle());
  EXPECT_FALSE(Handle(nullptr));
  EXPECT_FALSE(Handle(INVALID_HANDLE_VALUE));
  EXPECT_EQ(Handle(INVALID_HANDLE_VALUE).get(), nullptr);
}

TEST(Handle, ClosesWhatItOwns) {
  const std::size_t before = host::LibraryHandles();
  {
    const Handle handle = NewHandle();
    EXPECT_TRUE(handle);
    EXPECT_EQ(host::LibraryHandles(), before + 1);
  }
  EXPECT_EQ(host::LibraryHandles(), before);
}

TEST(Handle, MovesItsOwnership) {
  const std::size_t before = host::LibraryHandles();
  Handle first = NewHandle();
  Handle second(std::move(first));
  Handle third;
  third = std::move(second);
  EXPECT_TRUE(third);
  EXPECT_EQ(host::LibraryHandles(), before + 1);
  third = Handle();
  EXPECT_EQ(host::LibraryHandles(), before);
}

TEST(Handle, IsEmptyOnceClosed) {
  Handle handle = NewHandle();
  handle.Close();
  handle.Close();
  EXPECT_FALSE(handle);
}

TEST(UpperCase, RaisesEveryLetter) {
  EXPECT_EQ(qxcm::UpperCase(u"combt"), u"COMBT");
  EXPECT_EQ(qxcm::UpperCase(u"Com1:"), u"COM1:");
  EXPECT_EQ(qxcm::UpperCase(u""), u"");
  EXPECT_EQ(qxcm::UpperCase(u"\u00E4\u00F6\u00FF_\u03B1"), u"\u00C4\u00D6\u0178_\u0391");
}

}  // namespace
