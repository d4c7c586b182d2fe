// The focus block, shared by name with the focusing side.
#include "commands/measure/focus_block.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

#include "common/kernel/handles.h"
#include "platform/event.h"
#include "platform/shared_block.h"
#include "unit/measure/focusing_service.h"

namespace qxtest {
namespace {

using qxcm::FocusBlock;

/// The block's bytes, whatever they mean.
qxcm::SharedBlock Bytes() { return {u"KORAX-HALVERN.RZM.CMemFocusDat", u"KORAX-HALVERN.RZM.CMemFocusMtx", 64}; }

void Put(std::size_t offset, std::uint32_t word) {
  qxcm::SharedBlock block = Bytes();
  qxcm::Guard guard(block.mutex());
  std::memcpy(block.bytes() + offset, &word, sizeof word);
}

std::uint32_t Word(std::size_t offset) {
  qxcm::SharedBlock block = Bytes();
  qxcm::Guard guard(block.mutex());
  std::uint32_t word = 0;
  std::memcpy(&word, block.bytes() + offset, sizeof word);
  return word;
}

TEST(FocusBlock, IsMadeByTheFirstAndOpenedByTheNext) {
  FocusSide::Forget();  // nobody has it open now
  FocusBlock first;
  EXPECT_FALSE(Bytes().created());
  Put(36, 1234);
  EXPECT_EQ(FocusBlock().Copy().position, 1234) << "an existing block is opened as it is";
}

TEST(FocusBlock, IsEmptyWhenItIsMade) {
  FocusSide::Forget();
  FocusBlock block;
  const qxcm::FocusData zeros = {};
  const qxcm::FocusData data = block.Copy();
  EXPECT_EQ(std::memcmp(&data, &zeros, sizeof data), 0);
}

TEST(FocusBlock, HasEachFieldAtItsOffset) {
  Focusing service;
  Put(20, 4);
  Put(36, 0xFFFFFFFF);
  Put(40, 12345);
  Put(44, 0x00030200);  // bytes 45 and 46
  Put(56, 0xFFFFFF01);
  const qxcm::FocusData data = FocusBlock().Copy();
  EXPECT_EQ(data.state, 4u);
  EXPECT_EQ(data.position, -1);
  EXPECT_EQ(data.distance, 12345u);
  EXPECT_EQ(data.manual, 2);
  EXPECT_EQ(data.automatic, 3);
  EXPECT_EQ(data.failed, 1);
}

TEST(FocusBlock, TakesTheOwnersEventAndIdentityAndGivesTheEventBack) {
  Focusing service;
  const qxcm::Event event;
  FocusBlock block;
  EXPECT_TRUE(block.Claim(event.handle()));
  EXPECT_EQ(Word(48), GetCurrentProcessId());
  EXPECT_EQ(Word(52), static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(event.handle())));
  block.Release();
  EXPECT_EQ(Word(52), 0u);
}

TEST(FocusBlock, HasOneOwnerAtATime) {
  Focusing service;
  const qxcm::Event first;
  const qxcm::Event second;
  FocusBlock block;
  EXPECT_TRUE(block.Claim(first.handle()));
  const std::uint32_t owner = Word(52);
  EXPECT_FALSE(FocusBlock().Claim(second.handle()));
  EXPECT_EQ(Word(52), owner);
  block.Release();
  EXPECT_TRUE(FocusBlock().Claim(second.handle()));
  FocusBlock().Release();
}

TEST(FocusBlock, LeavesEveryOtherByteAsItIs) {
  Focusing service;
  for (std::size_t offset = 0; offset < 64; offset += 4) Put(offset, offset == 52 ? 0 : 0x5A5A5A5A);
  const qxcm::Event event;
  FocusBlock block;
  EXPECT_TRUE(block.Claim(event.handle()));
  block.Release();
  for (std::size_t offset = 0; offset < 64; offset += 4) {
    if (offset == 48 || offset == 52) continue;
    EXPECT_EQ(Word(offset), 0x5A5A5A5Au) << offset;
  }
}

TEST(FocusBlock, ThatCannotBeMadeIsAnException) {
  for (const char* call : {"CreateFileMappingW", "MapViewOfFile"}) {
    const std::size_t handles = host::LibraryHandles();
    const Failing fault(call);
    try {
      FocusBlock block;
      FAIL() << call;
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "FileMapping create failed.");
    }
    EXPECT_EQ(host::LibraryHandles(), handles);
  }
}

TEST(FocusBlock, IsReadUnderItsMutexOnly) {
  Focusing service;
  std::string answer;
  service.Change([&](FocusBlockData& block) {  // under the mutex
    service.line.Send(CommandFrame("GT_FOS,CPS"));
    block.position = 8;
    EXPECT_EQ(service.line.Take(), "");
  });
  answer = service.line.TakeWithAcks(1);
  EXPECT_EQ(answer, ReplyFrame("FOS,CPS=8") + std::string(kAck));
}

TEST(FocusBlock, StaysOpenToOthersWhileAJobWaits) {
  Focusing service;
  service.Answer("ST_FOC,AFO=1");
  EXPECT_TRUE(WaitUntil([&] { return service.Calls({32}).size() == 1; }));
  EXPECT_EQ(service.Answer("GT_FOS,CPS"), "FOS,CPS=0");
  service.Complete(false);
  service.Await("FOS,AFO=0");
}

}  // namespace
}  // namespace qxtest
