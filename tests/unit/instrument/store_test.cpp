// The non-volatile store: the library's two calls and "store" in the state document.
#include "instrument/store.h"

#include <array>
#include <cstring>
#include <random>
#include <system_error>
#include <thread>

#include "instrument/system_calls.h"
#include "unit/instrument/stored_section_test.h"

namespace qxtest {
namespace {

using host::instrument::kMostStoreItems;
using host::instrument::StoreItemSize;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kUnknown = 0x100203;  // three bytes

class StoreTest : public StoredSectionTest {
 protected:
  StoreTest() : StoredSectionTest(host::instrument::MakeStoreSection()) {}
};

/// What the library reads, or nothing when the call fails.
Bytes Read(std::uint32_t item) {
  Bytes bytes(StoreItemSize(item));
  return QxSystemReadStoreItem(item, bytes.data()) == 0 ? bytes : Bytes();
}

TEST(StoreItemSizes, FollowFromTypeAndCountWhateverTheNumber) {
  const std::string widths = "111224482";  // by type
  std::mt19937 random(20240131);
  for (std::uint32_t low = 0; low <= 0xFFFF; ++low) {
    const std::uint32_t type = low / 256, count = low % 256;
    const std::size_t expected = type < widths.size() ? count * static_cast<std::size_t>(widths[type] - '0') : 0;
    ASSERT_EQ(StoreItemSize(random() << 16 | low), expected) << low;
  }
}

TEST_F(StoreTest, WritesAndReadsJustTheBytesOfTheSize) {
  std::mt19937 random(20240131);
  for (int round = 0; round < 900; ++round) {
    const std::uint32_t item = (random() % 200) << 16 | (random() % 12) << 8 | random() % 256;
    Bytes written(2048), read(2048, 0xCD);
    for (std::uint8_t& byte : written) byte = static_cast<std::uint8_t>(random());
    const std::size_t size = StoreItemSize(item);
    const bool taken = QxSystemWriteStoreItem(item, written.data()) == 0;
    const bool found = QxSystemReadStoreItem(item, read.data()) == 0;
    ASSERT_EQ(taken, size != 0) << item;
    ASSERT_EQ(found, size != 0) << item;
    ASSERT_EQ(std::memcmp(read.data(), written.data(), size), 0) << item;
    for (std::size_t i = size; i < read.size(); ++i) ASSERT_EQ(read[i], 0xCD) << item;
  }
}

TEST_F(StoreTest, HoldsTheItemsOfEveryInstrument) {
  EXPECT_EQ(Now().size(), 38u);
  EXPECT_EQ(Now().begin().key(), "0x020110");
  const StateJson now = Now();
  for (const auto& item : now.items()) {
    const auto identifier = static_cast<std::uint32_t>(std::stoul(item.key(), nullptr, 16));
    EXPECT_EQ(item.value().get<std::string>().size(), 2 * StoreItemSize(identifier)) << item.key();
    EXPECT_EQ(Read(identifier).size(), StoreItemSize(identifier)) << item.key();
  }
}

TEST_F(StoreTest, HoldsNamesSerialNumberAndInspectionAtFirstAndZerosElsewhere) {
  std::array<char16_t, 33> names = {};
  EXPECT_EQ(QxSystemReadStoreItem(0x090821, names.data()), 0);
  EXPECT_EQ(names, (std::array<char16_t, 33>{u'K', u'o', u'r', u'a', u'x', u',', u'D', u'X', u'-', u'1'}));
  std::array<char, 16> serial = {};
  EXPECT_EQ(QxSystemReadStoreItem(0x020110, serial.data()), 0);
  EXPECT_EQ(serial, (std::array<char, 16>{'0', '0', '0', '0', '0', '0'}));
  double inspection = 0;
  EXPECT_EQ(QxSystemReadStoreItem(0xC20701, &inspection), 0);
  EXPECT_EQ(inspection, 45322.0);
  const StateJson now = Now();
  for (const auto& item : now.items()) {
    if (item.key() == "0x020110" || item.key() == "0x090821" || item.key() == "0xC20701") continue;
    EXPECT_EQ(item.value().get<std::string>().find_first_not_of('0'), std::string::npos) << item.key();
  }
}

TEST_F(StoreTest, ShowsBytesAsTheyStandInTheStore) {
  const std::int32_t number = -2;
  EXPECT_EQ(QxSystemWriteStoreItem(0x810501, &number), 0);
  EXPECT_EQ(Now()["0x810501"], "FEFFFFFF");
  Patched(R"({"0x810501":"0100007f","0xa50201":"02"})");
  EXPECT_EQ(Now()["0x810501"], "0100007F");
  EXPECT_EQ(Read(0x810501), (Bytes{1, 0, 0, 0x7F}));
  EXPECT_EQ(Read(0xA50201), Bytes{2});
}

TEST_F(StoreTest, AnItemThatIsNotThereIsNotRead) {
  Bytes bytes(3, 0xCD);
  EXPECT_NE(QxSystemReadStoreItem(kUnknown, bytes.data()), 0);
  EXPECT_EQ(bytes, Bytes(3, 0xCD));
}

TEST_F(StoreTest, WritingMakesAnItem) {
  EXPECT_EQ(QxSystemWriteStoreItem(kUnknown, "abc"), 0);
  EXPECT_EQ(Read(kUnknown), (Bytes{'a', 'b', 'c'}));
  EXPECT_EQ(Now()["0x100203"], "616263");
  const std::uint32_t high = 0xFF000201;
  EXPECT_EQ(QxSystemWriteStoreItem(high, "x"), 0);
  EXPECT_EQ(Now()["0xFF000201"], "78");
}

TEST_F(StoreTest, AnIdentifierWithoutSizeAndANullPointerFail) {
  const std::string before = Now().dump();
  Bytes bytes(8, 0xCD);
  for (const std::uint32_t item : {0x090901u, 0x09FF01u, 0x090800u, 0u, 0xFFFFFFFFu}) {
    EXPECT_NE(QxSystemReadStoreItem(item, bytes.data()), 0) << item;
    EXPECT_NE(QxSystemWriteStoreItem(item, bytes.data()), 0) << item;
  }
  EXPECT_NE(QxSystemReadStoreItem(0xA50201, nullptr), 0);
  EXPECT_NE(QxSystemWriteStoreItem(0xA50201, nullptr), 0);
  EXPECT_EQ(bytes, Bytes(8, 0xCD));
  EXPECT_EQ(Now().dump(), before);
}

TEST_F(StoreTest, TakesSoManyItemsAndNoMore) {
  std::uint32_t made = 0;
  while (QxSystemWriteStoreItem(made << 16 | 0x0002FF, Bytes(255).data()) == 0) ++made;
  EXPECT_EQ(Now().size(), kMostStoreItems);
  EXPECT_EQ(made, kMostStoreItems - 38);
  ExpectRefused(R"({"0xFE000201":"00"})");
  EXPECT_EQ(QxSystemWriteStoreItem(0xA50201, "1"), 0) << "there already";
  EXPECT_EQ(Patched(R"({"0x0002FF":null,"0xFE000201":"00"})").size(), kMostStoreItems);
}

TEST_F(StoreTest, ListsIdentifierAndBytesOfBothCalls) {
  std::uint8_t byte = 0;
  QxSystemWriteStoreItem(0xA50201, "\xAB");
  QxSystemReadStoreItem(0xA50201, &byte);
  QxSystemReadStoreItem(kUnknown, &byte);
  QxSystemReadStoreItem(0xA50201, nullptr);
  QxSystemWriteStoreItem(0xA50201, nullptr);
  QxSystemWriteStoreItem(0x090901, &byte);
  EXPECT_EQ(Calls(),
            (std::vector<std::string>{R"(QxSystem 62 (10813953, "AB") = 0)", R"(QxSystem 61 (10813953, "AB") = 0)",
                                      R"(QxSystem 61 (1049091) = -1)", R"(QxSystem 61 (10813953, null) = -1)",
                                      R"(QxSystem 62 (10813953, null) = -1)", R"(QxSystem 62 (592129) = -1)"}));
}

TEST_F(StoreTest, AFaultKeepsACallFromBeingMade) {
  host::AddFault({"QxSystem", std::int64_t{62}, 1, 1, std::nullopt, 5, std::nullopt, 0});
  host::AddFault({"QxSystem", std::int64_t{61}, 1, 1, 7, std::nullopt, std::nullopt, 0});
  EXPECT_EQ(QxSystemWriteStoreItem(0xA50201, "\x01"), -1);
  std::uint8_t byte = 0xCD;
  EXPECT_EQ(QxSystemReadStoreItem(0xA50201, &byte), 7);
  EXPECT_EQ(byte, 0xCD);
  EXPECT_EQ(Read(0xA50201), Bytes{0});
}

TEST_F(StoreTest, ANullSetsAnItemOfEveryInstrumentBackAndRemovesAnother) {
  QxSystemWriteStoreItem(kUnknown, "abc");
  QxSystemWriteStoreItem(0xC20701, "12345678");
  Patched(R"({"0x100203":null,"0xC20701":null,"0x110201":null})");
  EXPECT_EQ(Now().size(), 38u);
  double inspection = 0;
  EXPECT_EQ(QxSystemReadStoreItem(0xC20701, &inspection), 0);
  EXPECT_EQ(inspection, 45322.0);
}

TEST_F(StoreTest, ABadPatchIsRefusedWhole) {
  for (const char* patch : {"null",
                            "[]",
                            R"("00")",
                            R"({"0xA50201":"01","0xA60201":""})",
                            R"({"0xA50201":"0102"})",
                            R"({"0xA50201":"1"})",
                            R"({"0xA50201":"0g"})",
                            R"({"0xA50201":1})",
                            R"({"0xA50201":[1]})",
                            R"({"0xA50901":"01"})",
                            R"({"0xA50901":null})",
                            R"({"0xA50200":""})",
                            R"({"A50201":"01"})",
                            R"({"0XA50201":"01"})",
                            R"({"10813953":"01"})",
                            R"({"0x":"01"})",
                            R"({"":"01"})",
                            R"({"0xA5020 ":"01"})",
                            R"({"0x000A50201":"01"})",
                            R"({"0x-50201":"01"})"}) {
    ExpectRefused(patch);
  }
}

TEST_F(StoreTest, SaysWhatIsWrong) {
  try {
    Patched(R"({"0xC10401":"01"})");
    FAIL() << "taken";
  } catch (const host::instrument::StateError& error) {
    EXPECT_STREQ(error.what(), "store: \"0xC10401\": 2 bytes are expected");
  }
}

TEST_F(StoreTest, IsReset) {
  const std::string before = Now().dump();
  QxSystemWriteStoreItem(kUnknown, "abc");
  QxSystemWriteStoreItem(0xA50201, "x");
  state_.Reset();
  EXPECT_EQ(Now().dump(), before);
}

TEST_F(StoreTest, IsRestoredWithTheItemsThatAnOldFileLacks) {
  QxSystemWriteStoreItem(kUnknown, "abc");
  section_->Restore(StateJson::parse(R"({"0xA50201":"09","0x200201":"08"})"));
  EXPECT_EQ(Now().size(), 39u);
  EXPECT_EQ(Now()["0x200201"], "08");
  EXPECT_EQ(Read(0xA50201), Bytes{9});
}

TEST_F(StoreTest, AChangeThatCannotBeKeptIsNotMade) {
  const std::string before = Now().dump();
  LetNothingBeKept();
  EXPECT_NE(QxSystemWriteStoreItem(0xA50201, "x"), 0);
  EXPECT_NE(QxSystemWriteStoreItem(kUnknown, "abc"), 0);
  EXPECT_THROW(Patched(R"({"0xA50201":"01"})"), std::system_error);
  EXPECT_THROW(state_.Reset(), std::system_error);
  EXPECT_EQ(Now().dump(), before);
}

TEST_F(StoreTest, AnyThreadWritesAndReadsWholeItems) {
  constexpr int kRounds = 300;
  const auto write = [](std::uint8_t byte) {
    for (int round = 0; round < kRounds; ++round) QxSystemWriteStoreItem(0x090821, Bytes(66, byte).data());
  };
  QxSystemWriteStoreItem(0x090821, Bytes(66, 1).data());
  std::thread first(write, std::uint8_t{1}), second(write, std::uint8_t{2});
  for (int round = 0; round < kRounds; ++round) {
    const Bytes bytes = Read(0x090821);
    EXPECT_EQ(bytes, Bytes(66, bytes.at(0)));
    Patched(R"({"0xA50201":"01"})");
  }
  first.join();
  second.join();
  EXPECT_EQ(Now().size(), 38u);
}

}  // namespace
}  // namespace qxtest
